#include "NevQos/policy/QosPolicyMapClassData.h"

#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosPolicyMapClassData::QosPolicyMapClassData(
      Zub::Ptr< QosPolicyMapSm > const& pmapSm, Zub::Ptr< QosClassData > const& curClassData,
      Zub::Ptr< Qos::ClassMapMatch const > const& curClassMatch )
    : pmapSm_( pmapSm ), curClassData_( curClassData ), curClassMatch_( curClassMatch ) {}

QosPolicyMapClassData::~QosPolicyMapClassData() = default;

}  // namespace Nev
