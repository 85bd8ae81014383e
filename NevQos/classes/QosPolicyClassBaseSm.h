// What every hardware copy of a class has: the class data, the match machines and the class
// action. A class without a per-interface policer or counter has one copy, the class machine
// itself; otherwise each copy (per interface, LAG, shared policer or shared map) is a machine of
// its own built on this base. The policer copies of a class share its action machines, which
// hold nothing of a copy's own.
#pragma once

#include <cstdint>

#include "NevQos/classes/QosClassActionSm.h"
#include "NevQos/match/QosClassMatchSm.h"
#include "NevQos/platform/entities/AclSliceHwStatus.h"
#include "NevQos/platform/entities/ClassMapStatus.h"
#include "NevQos/platform/entities/PolicyMapStatus.h"
#include "NevQos/platform/zub/Attribute.h"
#include "NevQos/types/QosClassConfig.h"
#include "NevQos/types/QosClassData.h"
#include "NevQos/types/QosClassMapKey.h"

namespace Nev {

class QosAclSm;
class QosPolicyMapSm;

class QosPolicyClassBaseSm : public Zub::PtrInterface {
 public:
   explicit QosPolicyClassBaseSm( Zub::Ptr< QosClassConfig const > config );
   ~QosPolicyClassBaseSm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   Zub::Ptr< QosClassConfig const > const& config() const { return config_; }
   QosClassMapKey const& cmapKey() const { return config_->cmapKey(); }
   Zub::Name const& cmapName() const { return cmapKey().cmapName(); }
   Qos::MapType cmapType() const { return cmapKey().cmapType(); }
   QosAclSm* qosAclSm() const { return config_->qosAclSm(); }
   QosPolicyMapSm* pmapSm() const { return config_->pmapSm(); }
   Zub::Ptr< Qos::ClassMapStatus const > const& cmap() const { return config_->cmap(); }
   unsigned cmapPrio() const { return config_->cmapPrio(); }
   Zub::Ptr< Qos::ClassAction const > const& caction() const { return config_->caction(); }
   bool classDefault() const { return config_->classDefault(); }
   Zub::Ptr< Qos::PolicyMapHwStatus > const& pmapSliceHwStatus() const {
      return pmapSliceHwStatus_;
   }
   Zub::Ptr< QosClassData > const& classData() const { return classData_; }
   // One match machine per match of the class map, by its option: a class map may hold several.
   ZUB_SM_CHILDREN( classMatchSm, Qos::ClassMapMatchOption, QosClassMatchSm )
   // The one class action of the class, under cmapKey.
   ZUB_SM_CHILDREN( classActionSm, QosClassMapKey, QosClassActionSm )

   // Virtual operations, in slot order.
   virtual void deleteSm();
   virtual void intfUpdated( Qos::IntfPairKey const& intfPair, bool add );
   virtual void counterUpdateRequest();
   virtual void showAcl( std::uint32_t socket, std::uint32_t unit, bool detail );
   virtual void handleVerify();
   // The class action machine applied to this copy's class data: its own, or for a policer copy
   // the class's; null when none was applied.
   virtual QosClassActionSm* appliedClassActionSm() const;

   void setPmapHwStatus();
   void createSmCommon();
   void createClassActionSm();
   void createClassMatchSm();
   void deleteClassActionSm();
   void deleteClassMatchSm();
   // All interfaces using the class's named policer share it.
   bool namedSharedPolicer() const;
   // The class data's policer, with the configured parameters clamped to the chip's limits.
   void createPolicerData( Zub::Name const& name );
   void doPrepareToDie();

 protected:
   // The policer of a copy, in the class data's key.
   void classDataPolicerNameIs( Zub::Name const& name );

 private:
   Zub::Ptr< QosClassConfig const > config_;
   Zub::Ptr< Qos::PolicyMapHwStatus > pmapSliceHwStatus_;
   Zub::Ptr< QosClassData > classData_;
};

}  // namespace Nev
