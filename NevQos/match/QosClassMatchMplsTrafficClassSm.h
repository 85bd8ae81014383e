// The generated ACL of an MPLS traffic-class match, one per ACL family of the policy map.
#pragma once

#include <cstdint>

#include "NevQos/match/QosClassMatchChildSm.h"
#include "NevQos/platform/zub/String.h"
#include "NevQos/types/QosPMapAclTypes.h"

namespace Nev {

class QosClassMatchMplsTrafficClassSm final : public QosClassMatchChildSm {
 public:
   QosClassMatchMplsTrafficClassSm( AclKey const& key, QosClassMatchSm* classMatchSm,
                                    QosPMapAclTypes pmapAclTypes );

   QosPMapAclTypes pmapAclTypes() const { return pmapAclTypes_; }
   static Zub::String createAclName( NevHelper::QosAclHelper const& helper, Acl::AclType aclType,
                                     std::uint32_t matchPrio );

   bool createAcl() override;
   void showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) override;
   void handleVerify() override;

 protected:
   bool cleanupAfterDestroy() const override;

 private:
   QosPMapAclTypes pmapAclTypes_;
};

}  // namespace Nev
