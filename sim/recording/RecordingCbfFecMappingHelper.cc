#include "NevQos/sim/recording/RecordingCbfFecMappingHelper.h"

#include "NevQos/sim/chip/ChipText.h"

namespace Sim {

namespace {

CallRecorder::Operations const& operations() {
   static CallRecorder::Operations const table{
      { "createOrUpdateMapping", typeid( NevHelper::CbfFecMappingUpdateStatus ) },
      { "syncMapping", typeid( NevHelper::CbfFecMappingUpdateStatus ) },
      { "deleteMapping", typeid( void ) },
      { "hwFecOverrideRuleId", typeid( Qos::Hardware::FecOverrideRuleId ) },
      { "hwFecOverrideRules", typeid( std::vector< NevHelper::CbfFecMapHwRule > ) },
   };
   return table;
}

}  // namespace

RecordingCbfFecMappingHelper::RecordingCbfFecMappingHelper(
      Zub::Ptr< NevHelper::CbfFecMappingHelper > inner, Zub::Ptr< Kesh::TimerWheel > clock )
    : CbfFecMappingHelper( Zub::Name( "cbfFecMappingHelper" ) )
    , CallRecorder( "cbf", operations(), std::move( clock ) )
    , inner_( std::move( inner ) ) {}

RecordingCbfFecMappingHelper::~RecordingCbfFecMappingHelper() = default;

bool RecordingCbfFecMappingHelper::hasBackupSupport() const {
   return inner_->hasBackupSupport();
}

NevHelper::CbfFecMappingUpdateStatus RecordingCbfFecMappingHelper::createOrUpdateMapping(
      Nev::CbfFecMapRule const& rule ) {
   if( taking( "createOrUpdateMapping" ) ) {
      record( "createOrUpdateMapping",
              { { "key", argOf( rule.key() ) },
                { "hwFecId", argOf( rule.hwFecId() ) },
                { "overridingHwFecId", argOf( rule.overridingHwFecId() ) } } );
   }
   if( auto const answer =
             scripted< NevHelper::CbfFecMappingUpdateStatus >( "createOrUpdateMapping" ) ) {
      return *answer;
   }
   return inner_->createOrUpdateMapping( rule );
}

NevHelper::CbfFecMappingUpdateStatus RecordingCbfFecMappingHelper::syncMapping(
      Nev::CbfFecMapRule const& rule, Qos::Hardware::FecOverrideRuleId hwRuleId ) {
   if( taking( "syncMapping" ) ) {
      record( "syncMapping",
              { { "key", argOf( rule.key() ) }, { "hwRuleId", argOf( hwRuleId ) } } );
   }
   if( auto const answer = scripted< NevHelper::CbfFecMappingUpdateStatus >( "syncMapping" ) ) {
      return *answer;
   }
   return inner_->syncMapping( rule, hwRuleId );
}

void RecordingCbfFecMappingHelper::deleteMapping( Qos::Glarn::OverrideKey const& ruleKey ) {
   if( taking( "deleteMapping" ) ) record( "deleteMapping", { { "key", argOf( ruleKey ) } } );
   if( acted( "deleteMapping" ) ) return;
   inner_->deleteMapping( ruleKey );
}

Qos::Hardware::FecOverrideRuleId RecordingCbfFecMappingHelper::hwFecOverrideRuleId(
      Qos::Glarn::OverrideKey const& ruleKey ) {
   taking( "hwFecOverrideRuleId" );
   if( auto const answer = scripted< Qos::Hardware::FecOverrideRuleId >( "hwFecOverrideRuleId" ) ) {
      return *answer;
   }
   return inner_->hwFecOverrideRuleId( ruleKey );
}

std::vector< NevHelper::CbfFecMapHwRule > RecordingCbfFecMappingHelper::hwFecOverrideRules() {
   taking( "hwFecOverrideRules" );
   if( auto const answer =
             scripted< std::vector< NevHelper::CbfFecMapHwRule > >( "hwFecOverrideRules" ) ) {
      return *answer;
   }
   return inner_->hwFecOverrideRules();
}

}  // namespace Sim
