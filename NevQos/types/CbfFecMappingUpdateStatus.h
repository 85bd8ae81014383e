// The answer of the class-based-forwarding helper to one override update.
#pragma once

#include <cstdint>

#include "NevQos/platform/zub/ValueText.h"

namespace NevHelper {

enum CbfFecMappingUpdateStatus : std::uint32_t {
   cbfMapUpdateSuccess = 0,
   cbfMapUpdateNotReady = 1,
   cbfMapUpdateFailed = 2,
};
ENUM_TEXT_DECLARE( CbfFecMappingUpdateStatus );

}  // namespace NevHelper
