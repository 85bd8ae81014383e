// One map type (control plane, QoS, PDP): creates the hardware status level of the type.
#pragma once

#include <cstdint>

#include <tuple>

#include "NevQos/platform/entities/PolicyMapStatus.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Attribute.h"
#include "NevQos/platform/zub/Ptr.h"

namespace Nev {

class QosAclSm;

class QosPolicyMapTypeSm : public Zub::PtrInterface {
 public:
   QosPolicyMapTypeSm( Qos::MapType type, QosAclSm* qosAclSm,
                       Zub::Ptr< Qos::PolicyMapTypeStatus const > const& pmapTypeStatus );
   ~QosPolicyMapTypeSm() override;

   Qos::MapType pmapType() const { return type_; }
   QosAclSm* qosAclSm() const { return qosAclSm_; }
   Zub::Ptr< Qos::PolicyMapTypeStatus const > const& pmapTypeStatus() const {
      return pmapTypeStatus_;
   }
   bool initialized() const { return initialized_; }
   auto zubCtorParams() const {
      return std::make_tuple( Zub::ctorParam( "type", type_ ),
                              Zub::ctorParam( "qosAclSm", qosAclSm_ ),
                              Zub::ctorParam( "pmapTypeStatus", pmapTypeStatus_ ) );
   }

   void handleInitialized();
   void doPrepareToDie();
   // The hardware status level of the type stands.
   void handleVerify();
   // Prints every policy map of every service policy of this type.
   void showAcls( std::uint32_t socket, std::uint32_t unit, bool detail );

 private:
   Qos::MapType type_;
   QosAclSm* qosAclSm_;
   Zub::Ptr< Qos::PolicyMapTypeStatus const > pmapTypeStatus_;
   bool initialized_ = false;
};

}  // namespace Nev
