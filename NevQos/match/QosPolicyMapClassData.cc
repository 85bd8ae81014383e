#include "NevQos/match/QosPolicyMapClassData.h"

#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosPolicyMapClassData::QosPolicyMapClassData( Zub::Ptr< QosPolicyMapSm > const& pmapSm,
                                              Zub::Ptr< QosClassData > const& curClassData )
    : pmapSm_( pmapSm ), curClassData_( curClassData ) {}

QosPolicyMapClassData::~QosPolicyMapClassData() = default;

}  // namespace Nev
