// Serves the policy-map counter requests of one client. The client writes a request time into
// its counter configuration; a time later than the last one served pulls the counters of every
// service policy into the hardware status, and the time stamp is written last, so the client
// sees either the old time or the finished numbers.
#pragma once

#include "NevQos/platform/entities/AclSliceHwStatus.h"
#include "NevQos/platform/entities/CounterConfig.h"
#include "NevQos/platform/zub/Attribute.h"

namespace Nev {

class QosAclSm;

class QosCounterUpdateSm : public Zub::PtrInterface {
 public:
   class ZubCounterConfig : public Qos::CounterConfig::Notifiee {
    public:
      explicit ZubCounterConfig( QosCounterUpdateSm* sm ) : sm_( sm ) {}
      void onPmapCounterUpdateRequestTime() override { sm_->handlePMapCounterUpdateRequest(); }

    private:
      QosCounterUpdateSm* sm_;
   };

   QosCounterUpdateSm( Zub::Name const& name, QosAclSm* qosAclSm,
                       Zub::Ptr< Qos::AclSliceHwStatus > const& qosAclSliceHwStatus,
                       Zub::Ptr< Qos::CounterConfig const > const& counterConfig );
   ~QosCounterUpdateSm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   QosAclSm* qosAclSm() const { return qosAclSm_; }
   Zub::Ptr< Qos::AclSliceHwStatus > const& qosAclSliceHwStatus() const {
      return qosAclSliceHwStatus_;
   }
   Zub::Ptr< Qos::CounterConfig const > const& counterConfig() const {
      return counterConfig_.get();
   }
   Zub::Name const& name() const { return name_; }
   bool initialized() const { return initialized_; }

   void handlePMapCounterUpdateRequest();
   void zubDoZombieReactors( bool zombie );

 private:
   void handleInitialized();

   QosAclSm* qosAclSm_;
   Zub::Ptr< Qos::AclSliceHwStatus > qosAclSliceHwStatus_;
   Zub::Input< Qos::CounterConfig const, ZubCounterConfig > counterConfig_;
   Zub::Name name_;
   bool initialized_ = false;
};

}  // namespace Nev
