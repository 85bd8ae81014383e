#include "NevQos/helpers/CbfFecMappingHelper.h"

#include "NevQos/platform/nev/NevAssert.h"

namespace NevHelper {

void CbfFecMappingHelper::unimplemented() const {
   Zub::String const text( "This function must be implemented by derived class" );
   if( Nev::noopAgent() ) return;
   nevAssert( text );
}

CbfFecMappingUpdateStatus CbfFecMappingHelper::createOrUpdateMapping( Nev::CbfFecMapRule const& ) {
   unimplemented();
   return cbfMapUpdateFailed;
}

CbfFecMappingUpdateStatus CbfFecMappingHelper::syncMapping( Nev::CbfFecMapRule const&,
                                                            Qos::Hardware::FecOverrideRuleId ) {
   unimplemented();
   return cbfMapUpdateFailed;
}

void CbfFecMappingHelper::deleteMapping( Qos::Glarn::OverrideKey const& ) {
   unimplemented();
}

Qos::Hardware::FecOverrideRuleId CbfFecMappingHelper::hwFecOverrideRuleId(
      Qos::Glarn::OverrideKey const& ) {
   unimplemented();
   return Qos::Hardware::invalidFecOverrideRuleId;
}

std::vector< CbfFecMapHwRule > CbfFecMappingHelper::hwFecOverrideRules() {
   unimplemented();
   return {};
}

}  // namespace NevHelper
