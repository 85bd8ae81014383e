#include "NevQos/types/AclCreateError.h"

namespace Nev {

namespace {

constexpr ValueText::Member aclCreateErrorNames[] = {
   { aclCreateErrorNone, "aclCreateErrorNone" },
   { aclCreateErrorOutOfTcam, "aclCreateErrorOutOfTcam" },
   { aclCreateErrorTooManyL4PortRanges, "aclCreateErrorTooManyL4PortRanges" },
   { aclCreateErrorExpandIpLen, "aclCreateErrorExpandIpLen" },
   { aclCreateErrorExpandAll, "aclCreateErrorExpandAll" },
   { aclCreateErrorExpandSrcIpLen, "aclCreateErrorExpandSrcIpLen" },
   { aclCreateErrorExpandDstIpLen, "aclCreateErrorExpandDstIpLen" },
   { aclCreateErrorExpandSrc, "aclCreateErrorExpandSrc" },
   { aclCreateErrorExpandDst, "aclCreateErrorExpandDst" },
   { aclCreateErrorTooManyAcls, "aclCreateErrorTooManyAcls" },
   { aclCreateErrorUnsupportedAction, "aclCreateErrorUnsupportedAction" },
   { aclCreateErrorRuleIgnored, "aclCreateErrorRuleIgnored" },
   { aclCreateErrorPolicerExhausted, "aclCreateErrorPolicerExhausted" },
   { aclCreateErrorIgnored, "aclCreateErrorIgnored" },
};

}  // namespace

ENUM_TEXT_DEFINE( AclCreateError, "Nev::AclCreateError", aclCreateErrorNames )

Zub::String aclCreateErrorText( AclCreateError e ) {
   switch( e ) {
      case aclCreateErrorNone:
         return "Succeeded";
      case aclCreateErrorOutOfTcam:
         return "Out of TCAM entries";
      case aclCreateErrorTooManyL4PortRanges:
         return "Too many L4 port ranges";
      case aclCreateErrorTooManyAcls:
         return "Too many ACLs";
      case aclCreateErrorUnsupportedAction:
         return "Unsupported Acl action";
      default:
         return "Unknown error";
   }
}

}  // namespace Nev
