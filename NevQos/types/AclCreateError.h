// The answer of every rule operation of the ACL helper. 0 is success; 3 to 9 ask the compiler to
// expand port or length ranges into masks and retry; 13 and 18 are not failures.
#pragma once

#include <cstdint>

#include "NevQos/platform/zub/ValueText.h"

namespace Nev {

enum AclCreateError : std::uint32_t {
   aclCreateErrorNone = 0,
   aclCreateErrorOutOfTcam = 2,
   aclCreateErrorTooManyL4PortRanges = 3,
   aclCreateErrorExpandIpLen = 4,
   aclCreateErrorExpandAll = 5,
   aclCreateErrorExpandSrcIpLen = 6,
   aclCreateErrorExpandDstIpLen = 7,
   aclCreateErrorExpandSrc = 8,
   aclCreateErrorExpandDst = 9,
   aclCreateErrorTooManyAcls = 10,
   aclCreateErrorUnsupportedAction = 11,
   aclCreateErrorRuleIgnored = 13,
   aclCreateErrorPolicerExhausted = 16,
   aclCreateErrorIgnored = 18,
};
ENUM_TEXT_DECLARE( AclCreateError );

// The operator's text of an error, as traced when a policy map fails: "Succeeded", "Out of TCAM
// entries", ..., and "Unknown error" for any value without a text of its own.
Zub::String aclCreateErrorText( AclCreateError e );

}  // namespace Nev
