// The arguments of one deferred compile of a class match.
#pragma once

#include "zub/Ptr.h"

namespace Nev {

// Class matching fills this in; queued update requests only hold a pointer to it.
class QosPolicyMapClassData : public Zub::PtrInterface {};

}  // namespace Nev
