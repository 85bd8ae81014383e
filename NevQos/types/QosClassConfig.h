// What a class is, fixed when its machine is made: the same for the class and each of its hardware
// copies, which hold it by reference rather than repeat it (a class with per-interface policers has
// a copy per interface).
#pragma once

#include "NevQos/platform/entities/ClassMapStatus.h"
#include "NevQos/platform/entities/PolicyMapStatus.h"
#include "NevQos/platform/zub/Ptr.h"
#include "NevQos/types/QosClassMapKey.h"

namespace Nev {

class QosAclSm;
class QosPolicyMapSm;

class QosClassConfig final : public Zub::PtrInterface {
 public:
   QosClassConfig( QosClassMapKey const& cmapKey, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                   Zub::Ptr< Qos::ClassMapStatus const > const& cmap, unsigned cmapPrio,
                   Zub::Ptr< Qos::ClassAction const > const& caction, bool classDefault )
       : cmapKey_( cmapKey )
       , qosAclSm_( qosAclSm )
       , pmapSm_( pmapSm )
       , cmap_( cmap )
       , caction_( caction )
       , cmapPrio_( cmapPrio )
       , classDefault_( classDefault ) {}

   QosClassMapKey const& cmapKey() const { return cmapKey_; }
   QosAclSm* qosAclSm() const { return qosAclSm_; }
   QosPolicyMapSm* pmapSm() const { return pmapSm_; }
   Zub::Ptr< Qos::ClassMapStatus const > const& cmap() const { return cmap_; }
   Zub::Ptr< Qos::ClassAction const > const& caction() const { return caction_; }
   unsigned cmapPrio() const { return cmapPrio_; }
   bool classDefault() const { return classDefault_; }

 private:
   QosClassMapKey cmapKey_;
   QosAclSm* qosAclSm_;
   QosPolicyMapSm* pmapSm_;
   Zub::Ptr< Qos::ClassMapStatus const > cmap_;
   Zub::Ptr< Qos::ClassAction const > caction_;
   unsigned cmapPrio_;
   bool classDefault_;
};

}  // namespace Nev
