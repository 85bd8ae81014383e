// The catch-all rule of the class-default class, one per ACL family. Its data lives under the
// option of its family, 1 for IPv4 and 2 for IPv6, whatever the parent's option.
#pragma once

#include "NevQos/match/QosClassMatchChildSm.h"
#include "NevQos/types/QosPMapAclTypes.h"

namespace Nev {

class QosClassMatchDefaultSm final : public QosClassMatchChildSm {
 public:
   QosClassMatchDefaultSm( AclKey const& key, QosClassMatchSm* classMatchSm,
                           QosPMapAclTypes pmapAclTypes );

   QosPMapAclTypes pmapAclTypes() const { return pmapAclTypes_; }

   bool createAcl() override;
   void showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) override;
   void handleVerify() override;

 protected:
   void prepareInitialized() override;
   bool cleanupAfterDestroy() const override;

 private:
   QosPMapAclTypes pmapAclTypes_;
};

}  // namespace Nev
