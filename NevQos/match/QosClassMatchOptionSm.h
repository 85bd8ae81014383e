// The generated ACL of a VLAN, COS, DSCP/ECN, MAC or built-in class match, one per ACL family of
// the policy map.
#pragma once

#include <cstdint>

#include "NevQos/match/QosClassMatchChildSm.h"
#include "NevQos/platform/zub/String.h"
#include "NevQos/types/QosPMapAclTypes.h"

namespace Nev {

class QosClassMatchOptionSm final : public QosClassMatchChildSm {
 public:
   QosClassMatchOptionSm( AclKey const& key, QosClassMatchSm* classMatchSm,
                          Qos::ClassMapMatchOption matchOption, QosPMapAclTypes pmapAclTypes );

   QosPMapAclTypes pmapAclTypes() const { return pmapAclTypes_; }
   static Zub::String createAclName( NevHelper::QosAclHelper const& helper, Acl::AclType aclType,
                                     Qos::ClassMapMatchOption matchOpt, std::uint32_t matchPrio );

   bool createAcl() override;
   void showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) override;
   void handleVerify() override;

 protected:
   bool cleanupAfterDestroy() const override;

 private:
   // Whether the chip can classify on this match on the immediate road; if not, the compile
   // programs nothing and the ACL counts as standing, so verification expects nothing either.
   bool chipClassifies() const;

   QosPMapAclTypes pmapAclTypes_;
};

}  // namespace Nev
