// What the loader says of a scenario text given as "bad.yaml": its refusal, or "no error".
#pragma once

#include <string>

namespace NevQosTest {

std::string errorOf( std::string const& text );

}  // namespace NevQosTest
