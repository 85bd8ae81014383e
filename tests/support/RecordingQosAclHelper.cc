#include "support/RecordingQosAclHelper.h"

#include <stdexcept>
#include <utility>

#include "zub/ActivityManager.h"
#include "zub/Format.h"

namespace NevQosTest {

using Nev::AclCreateError;
using Nev::AclKey;
using Nev::QosClassData;
using Nev::QosPolicyMapState;
using Qos::ClassMapMatchOption;
using std::uint16_t;
using std::uint32_t;
using std::uint8_t;

namespace {

char const* const errorOps[] = {
   "createIpAclSubrule",
   "createIpFragRule",
   "createDefaultRule",
   "createL2ParamsRule",
   "createMplsTrafficClassRule",
   "createDscpEcnRule",
   "createMacAclRule",
   "createBuiltInClassMatchRule",
   "precreateAcl",
   "commitAcl",
};

char const* const boolOps[] = {
   "isSupportedMacAclRule",        "isMacAclRuleSupportedPlatform",
   "checkUserCoppEntryExists",     "checkKernelCoppEntryExists",
   "createAndAttachPolicer",       "createAndAttachCoppPolicer",
   "createCoppPolicerByPortQueue", "ipSubruleExists",
   "ipPortRangeSubruleExists",     "createSmForPMap",
   "managedPrioritySupported",     "multipleActionsSupported",
   "errorOnPolicerExhaustion",     "policiesInStableState",
   "delaySviPmapSmCreation",       "ipLenRangeSubruleExists",
};

template< class T >
std::optional< T > take( std::deque< T >& next, std::optional< T > const& standing ) {
   if( !next.empty() ) {
      T v = next.front();
      next.pop_front();
      return v;
   }
   return standing;
}

std::string str( Zub::String const& s ) {
   return s.stdString();
}

std::string mapKeyText( Zub::Name const& name, Qos::MapType type, Qos::Direction direction ) {
   std::string t( name.view() );
   if( type != Qos::mapQos_ ) t += ":" + str( stringValue( type ) );
   if( direction != Qos::directionInput_ ) t += ":" + str( stringValue( direction ) );
   return t;
}

}  // namespace

// One line of the record, built field by field.
class RecordingQosAclHelper::Line {
 public:
   Line( RecordingQosAclHelper const& helper, char const* op ) : helper_( helper ), text_( op ) {}

   std::string const& text() const { return text_; }

   Line& field( char const* label, std::string_view value ) {
      text_ += ' ';
      text_ += label;
      text_ += '=';
      text_ += value;
      return *this;
   }
   Line& num( char const* label, std::uint64_t v ) { return field( label, std::to_string( v ) ); }
   Line& flag( char const* label, bool v ) { return field( label, v ? "true" : "false" ); }
   Line& pmap( QosPolicyMapState const& ps ) { return pmap( ps.key() ); }
   Line& pmap( Nev::QosPolicyMapKey const& k, char const* label = "pmap" ) {
      std::string t = mapKeyText( k.pmapName(), k.pmapType(), k.direction() );
      if( k.aclGroup() != Nev::QosPolicyMapKey::defaultAclGroup() ) {
         t += "@" + std::string( k.aclGroup().view() );
      }
      return field( label, t );
   }
   Line& cls( QosClassData const& cd ) {
      if( helper_.classDataText_ ) field( "class", helper_.classDataText_( cd ) );
      return *this;
   }
   Line& option( ClassMapMatchOption mo ) { return field( "option", stringValue( mo ).view() ); }
   Line& aclKey( AclKey const& ak ) {
      std::string t( ak.aclName().view() );
      if( ak.aclType() != Acl::ip() ) t += ":" + str( stringValue( ak.aclType() ) );
      if( ak.aclGroup() != AclKey::defaultAclGroup() ) {
         t += "@" + std::string( ak.aclGroup().view() );
      }
      return field( "aclKey", t );
   }
   Line& intf( Qos::IntfPairKey const& p ) {
      std::string t = str( p.intfId().stringValue() );
      if( !p.lagIntfId().empty() ) t += "(" + str( p.lagIntfId().stringValue() ) + ")";
      return field( "intf", t );
   }
   Line& id( char const* label, Acl::UniqueId const& v ) { return num( label, v.value() ); }
   Line& queueKey( char const* label, Nev::ModIdPortQueueKey const& k ) {
      return field( label, Zub::format( "%u/%u/%u", k.modId(), k.port(), k.queue() ).view() );
   }
   // The common head of the rule checks: class, ACL, rule id, rule and subrule numbers, sequence.
   Line& ruleCheck( QosClassData const& cd, AclKey const& ak, Acl::UniqueId const& aclId,
                    uint32_t ruleNum, uint32_t subruleNum, uint32_t sequence ) {
      cls( cd ).aclKey( ak ).id( "aclId", aclId ).num( "ruleNum", ruleNum );
      return num( "subruleNum", subruleNum ).num( "sequence", sequence );
   }
   // The common arguments of the per-match-option operations.
   Line& match( QosPolicyMapState const& ps, QosClassData const& cd, ClassMapMatchOption mo,
                AclKey const& ak ) {
      return pmap( ps ).cls( cd ).option( mo ).aclKey( ak );
   }

 private:
   RecordingQosAclHelper const& helper_;
   std::string text_;
};

RecordingQosAclHelper::RecordingQosAclHelper()
    : RecordingQosAclHelper( Zub::make< Qos::Status >( Zub::Name( "qosStatus" ) ),
                             Zub::make< Qos::AclSliceHwStatus >( Zub::Name( "aclSliceHwStatus" ) ),
                             Zub::make< Acl::Config >( Zub::Name( "aclConfig" ) ) ) {}

RecordingQosAclHelper::RecordingQosAclHelper( Zub::Ptr< Qos::Status const > qosStatus,
                                              Zub::Ptr< Qos::AclSliceHwStatus > qosAclSliceHwStatus,
                                              Zub::Ptr< Acl::Config const > mainAclConfig )
    : QosAclHelper( std::move( qosStatus ), std::move( qosAclSliceHwStatus ),
                    std::move( mainAclConfig ) ) {
   for( char const* op : errorOps )
      errorAnswers_[ op ];
   for( char const* op : boolOps )
      boolAnswers_[ op ];
}

// ---- The record

std::vector< std::string > RecordingQosAclHelper::callsMatching( std::string_view prefix ) const {
   std::vector< std::string > out;
   for( auto const& c : calls_ ) {
      if( !c.starts_with( prefix ) ) continue;
      // A bare name must not pick up a longer name: "destroyPolicer" is not "destroyPolicerX".
      if( c.size() > prefix.size() && prefix.find( ' ' ) == std::string_view::npos &&
          c[ prefix.size() ] != ' ' ) {
         continue;
      }
      out.push_back( c );
   }
   return out;
}

std::string RecordingQosAclHelper::callsText() const {
   std::string out;
   for( auto const& c : calls_ )
      out += c + "\n";
   return out;
}

void RecordingQosAclHelper::record( Line const& l ) {
   calls_.push_back( l.text() );
}

RecordingQosAclHelper::Line RecordingQosAclHelper::line( char const* op ) const {
   return Line( *this, op );
}

// ---- Answers

RecordingQosAclHelper::Answers< AclCreateError >& RecordingQosAclHelper::errorAnswers(
      std::string_view op ) {
   auto it = errorAnswers_.find( op );
   if( it == errorAnswers_.end() ) {
      throw std::invalid_argument( "RecordingQosAclHelper: " + std::string( op ) +
                                   " does not answer an AclCreateError" );
   }
   return it->second;
}

RecordingQosAclHelper::Answers< bool >& RecordingQosAclHelper::boolAnswers( std::string_view op ) {
   auto it = boolAnswers_.find( op );
   if( it == boolAnswers_.end() ) {
      throw std::invalid_argument( "RecordingQosAclHelper: " + std::string( op ) +
                                   " does not answer a bool" );
   }
   return it->second;
}

void RecordingQosAclHelper::aclCreateErrorIs( std::string_view op, AclCreateError answer ) {
   errorAnswers( op ).standing = answer;
}

void RecordingQosAclHelper::aclCreateErrorEnq( std::string_view op, AclCreateError answer ) {
   errorAnswers( op ).next.push_back( answer );
}

void RecordingQosAclHelper::boolAnswerIs( std::string_view op, bool answer ) {
   boolAnswers( op ).standing = answer;
}

void RecordingQosAclHelper::boolAnswerEnq( std::string_view op, bool answer ) {
   boolAnswers( op ).next.push_back( answer );
}

void RecordingQosAclHelper::cpuQueueIs( int answer ) {
   cpuQueueAnswers_.standing = answer;
}

void RecordingQosAclHelper::cpuQueueEnq( int answer ) {
   cpuQueueAnswers_.next.push_back( answer );
}

void RecordingQosAclHelper::aclGroupIs( Qos::IntfPairKey const& intfPair, Zub::Name const& group ) {
   aclGroups_[ intfPair ] = group;
}

void RecordingQosAclHelper::counterDataIs( AclKey const& aclKey,
                                           Nev::QosClassCounterData const& data ) {
   counterData_[ aclKey ] = data;
}

void RecordingQosAclHelper::classMapNameIs( uint32_t cpuQId, Zub::String const& name ) {
   classMapNames_[ cpuQId ] = name;
}

void RecordingQosAclHelper::intfNameIs( uint32_t modId, uint32_t port, Zub::String const& name ) {
   intfNames_[ { modId, port } ] = name;
}

void RecordingQosAclHelper::completeAsync( Zub::String const& message ) {
   asyncOperationResultIs( Nev::AsyncOperationResult( message, Zub::System::currentTime() ) );
}

AclCreateError RecordingQosAclHelper::errorAnswer( char const* op ) {
   auto& a = errorAnswers( op );
   return take( a.next, a.standing ).value_or( Nev::aclCreateErrorNone );
}

bool RecordingQosAclHelper::boolAnswer( char const* op, bool byDefault ) {
   auto& a = boolAnswers( op );
   return take( a.next, a.standing ).value_or( byDefault );
}

// ---- Rule creation and removal

Zub::Name RecordingQosAclHelper::aclGroup( Qos::IntfPairKey const& intfPair,
                                           Qos::ServicePolicyKey const& spKey ) {
   record(
         line( "aclGroup" )
               .intf( intfPair )
               .field( "spKey", mapKeyText( spKey.pmapName(), spKey.type(), spKey.direction() ) ) );
   auto it = aclGroups_.find( intfPair );
   return it != aclGroups_.end() ? it->second : QosAclHelper::aclGroup( intfPair, spKey );
}

AclCreateError RecordingQosAclHelper::createIpAclSubrule(
      Acl::AclType aclType, Acl::RuleConfig const&, Acl::UniqueId const& aclId,
      QosPolicyMapState const& pmapState, QosClassData const& classData, AclKey const& aclKey,
      uint32_t ruleNum, uint32_t subruleNum, uint16_t srcL4Port, uint16_t srcL4PortMask,
      uint16_t dstL4Port, uint16_t dstL4PortMask, uint16_t srcPortLow, uint16_t srcPortHigh,
      uint16_t dstPortLow, uint16_t dstPortHigh, uint16_t ipLen, uint16_t ipLenMask,
      uint16_t ipLenLow, uint16_t ipLenHigh, uint8_t tcpFlags, bool l4Rule, uint8_t ecnData,
      uint8_t ecnMask ) {
   record( line( "createIpAclSubrule" )
                 .field( "aclType", stringValue( aclType ).view() )
                 .id( "aclId", aclId )
                 .pmap( pmapState )
                 .cls( classData )
                 .aclKey( aclKey )
                 .num( "ruleNum", ruleNum )
                 .num( "subruleNum", subruleNum )
                 .num( "srcL4Port", srcL4Port )
                 .num( "srcL4PortMask", srcL4PortMask )
                 .num( "dstL4Port", dstL4Port )
                 .num( "dstL4PortMask", dstL4PortMask )
                 .num( "srcPortLow", srcPortLow )
                 .num( "srcPortHigh", srcPortHigh )
                 .num( "dstPortLow", dstPortLow )
                 .num( "dstPortHigh", dstPortHigh )
                 .num( "ipLen", ipLen )
                 .num( "ipLenMask", ipLenMask )
                 .num( "ipLenLow", ipLenLow )
                 .num( "ipLenHigh", ipLenHigh )
                 .num( "tcpFlags", tcpFlags )
                 .flag( "l4Rule", l4Rule )
                 .num( "ecnData", ecnData )
                 .num( "ecnMask", ecnMask ) );
   return errorAnswer( "createIpAclSubrule" );
}

AclCreateError RecordingQosAclHelper::createIpFragRule(
      QosPolicyMapState const& pmapState, QosClassData const& classData, AclKey const& aclKey,
      Acl::IpRuleConfig const&, Acl::UniqueId const& aclId, uint32_t ruleNum, uint32_t subRuleNum,
      uint8_t ecnData, uint8_t ecnMask ) {
   record( line( "createIpFragRule" )
                 .pmap( pmapState )
                 .cls( classData )
                 .aclKey( aclKey )
                 .id( "aclId", aclId )
                 .num( "ruleNum", ruleNum )
                 .num( "subRuleNum", subRuleNum )
                 .num( "ecnData", ecnData )
                 .num( "ecnMask", ecnMask ) );
   return errorAnswer( "createIpFragRule" );
}

AclCreateError RecordingQosAclHelper::createDefaultRule( QosPolicyMapState const& pmapState,
                                                         QosClassData const& classData,
                                                         ClassMapMatchOption matchOption,
                                                         AclKey const& aclKey ) {
   record( line( "createDefaultRule" ).match( pmapState, classData, matchOption, aclKey ) );
   return errorAnswer( "createDefaultRule" );
}

AclCreateError RecordingQosAclHelper::createL2ParamsRule( QosPolicyMapState const& pmapState,
                                                          QosClassData const& classData,
                                                          ClassMapMatchOption matchOption,
                                                          AclKey const& aclKey, uint32_t ruleNum ) {
   record( line( "createL2ParamsRule" )
                 .match( pmapState, classData, matchOption, aclKey )
                 .num( "ruleNum", ruleNum ) );
   return errorAnswer( "createL2ParamsRule" );
}

AclCreateError RecordingQosAclHelper::createMplsTrafficClassRule(
      QosPolicyMapState const& pmapState, QosClassData const& classData,
      ClassMapMatchOption matchOption, AclKey const& aclKey, uint32_t ruleNum ) {
   record( line( "createMplsTrafficClassRule" )
                 .match( pmapState, classData, matchOption, aclKey )
                 .num( "ruleNum", ruleNum ) );
   return errorAnswer( "createMplsTrafficClassRule" );
}

AclCreateError RecordingQosAclHelper::createDscpEcnRule( QosPolicyMapState const& pmapState,
                                                         QosClassData const& classData,
                                                         ClassMapMatchOption matchOption,
                                                         AclKey const& aclKey, uint32_t ruleNum ) {
   record( line( "createDscpEcnRule" )
                 .match( pmapState, classData, matchOption, aclKey )
                 .num( "ruleNum", ruleNum ) );
   return errorAnswer( "createDscpEcnRule" );
}

bool RecordingQosAclHelper::isSupportedMacAclRule( Acl::MacRuleConfig const& rule ) {
   record( line( "isSupportedMacAclRule" ) );
   return boolAnswer( "isSupportedMacAclRule", QosAclHelper::isSupportedMacAclRule( rule ) );
}

bool RecordingQosAclHelper::isMacAclRuleSupportedPlatform() {
   record( line( "isMacAclRuleSupportedPlatform" ) );
   return boolAnswer( "isMacAclRuleSupportedPlatform",
                      QosAclHelper::isMacAclRuleSupportedPlatform() );
}

AclCreateError RecordingQosAclHelper::createMacAclRule( QosPolicyMapState const& pmapState,
                                                        QosClassData const& classData,
                                                        ClassMapMatchOption matchOption,
                                                        AclKey const& aclKey, uint32_t ruleNum ) {
   record( line( "createMacAclRule" )
                 .match( pmapState, classData, matchOption, aclKey )
                 .num( "ruleNum", ruleNum ) );
   return errorAnswer( "createMacAclRule" );
}

AclCreateError RecordingQosAclHelper::createBuiltInClassMatchRule(
      QosPolicyMapState const& pmapState, QosClassData const& classData,
      ClassMapMatchOption matchOption, uint32_t ruleNum ) {
   record( line( "createBuiltInClassMatchRule" )
                 .pmap( pmapState )
                 .cls( classData )
                 .option( matchOption )
                 .num( "ruleNum", ruleNum ) );
   return errorAnswer( "createBuiltInClassMatchRule" );
}

void RecordingQosAclHelper::updatePortForAcl( QosPolicyMapState const& pmapState,
                                              QosClassData const& classData,
                                              ClassMapMatchOption matchOption, AclKey const& aclKey,
                                              Qos::IntfPairKey const& intfPair, bool add ) {
   record( line( "updatePortForAcl" )
                 .match( pmapState, classData, matchOption, aclKey )
                 .intf( intfPair )
                 .flag( "add", add ) );
}

void RecordingQosAclHelper::updatePolicer( Zub::Name const& policerName ) {
   record( line( "updatePolicer" ).field( "policerName", policerName.view() ) );
}

AclCreateError RecordingQosAclHelper::precreateAcl( QosPolicyMapState const& pmapState,
                                                    QosClassData const& classData,
                                                    ClassMapMatchOption matchOption,
                                                    AclKey const& aclKey ) {
   record( line( "precreateAcl" ).match( pmapState, classData, matchOption, aclKey ) );
   return errorAnswer( "precreateAcl" );
}

void RecordingQosAclHelper::destroyAcl( QosPolicyMapState const& pmapState,
                                        QosClassData const& classData,
                                        ClassMapMatchOption matchOption, AclKey const& aclKey ) {
   record( line( "destroyAcl" ).match( pmapState, classData, matchOption, aclKey ) );
}

void RecordingQosAclHelper::cleanupAcl( QosPolicyMapState const& pmapState,
                                        QosClassData const& classData,
                                        ClassMapMatchOption matchOption, AclKey const& aclKey ) {
   record( line( "cleanupAcl" ).match( pmapState, classData, matchOption, aclKey ) );
}

// ---- Commit and asynchronous operation

void RecordingQosAclHelper::prepareToCommit() {
   record( line( "prepareToCommit" ) );
}

AclCreateError RecordingQosAclHelper::commitAcl( QosClassData const& classData,
                                                 ClassMapMatchOption matchOption,
                                                 AclKey const& aclKey ) {
   record( line( "commitAcl" ).cls( classData ).option( matchOption ).aclKey( aclKey ) );
   return errorAnswer( "commitAcl" );
}

void RecordingQosAclHelper::batchCommitAcls( QosPolicyMapState const& pmapState ) {
   record( line( "batchCommitAcls" ).pmap( pmapState ) );
}

void RecordingQosAclHelper::batchCommitAclsIntf( QosPolicyMapState const& pmapState,
                                                 Qos::IntfPairKey const& intfPair, bool add ) {
   record( line( "batchCommitAclsIntf" ).pmap( pmapState ).intf( intfPair ).flag( "add", add ) );
   if( !batchCommitAclsIntfAlone_ ) QosAclHelper::batchCommitAclsIntf( pmapState, intfPair, add );
}

void RecordingQosAclHelper::handlePendingOperationTimeout() {
   record( line( "handlePendingOperationTimeout" ) );
}

// ---- CoPP

int RecordingQosAclHelper::coppAllocateCpuQ( QosClassData const& classData ) {
   record( line( "coppAllocateCpuQ" ).cls( classData ) );
   if( auto answer = take( cpuQueueAnswers_.next, cpuQueueAnswers_.standing ) ) return *answer;
   return nextCpuQueue_++;
}

void RecordingQosAclHelper::coppDeallocateCpuQ( QosClassData const& classData ) {
   record( line( "coppDeallocateCpuQ" ).cls( classData ) );
}

Nev::ModIdPortQueueKey RecordingQosAclHelper::getDdeCoppModIdPortQueue(
      QosClassData const& classData ) {
   record( line( "getDdeCoppModIdPortQueue" ).cls( classData ) );
   return Nev::ModIdPortQueueKey();
}

Nev::ModIdQueueKey RecordingQosAclHelper::getDdeCoppModIdQueue( QosClassData const& classData ) {
   record( line( "getDdeCoppModIdQueue" ).cls( classData ) );
   return Nev::ModIdQueueKey();
}

bool RecordingQosAclHelper::checkUserCoppEntryExists( Nev::ModIdPortQueueKey const& classData ) {
   record( line( "checkUserCoppEntryExists" ).queueKey( "classData", classData ) );
   return boolAnswer( "checkUserCoppEntryExists", false );
}

bool RecordingQosAclHelper::checkKernelCoppEntryExists( Nev::ModIdPortQueueKey const& classData ) {
   record( line( "checkKernelCoppEntryExists" ).queueKey( "classData", classData ) );
   return boolAnswer( "checkKernelCoppEntryExists", false );
}

void RecordingQosAclHelper::createDefaultCoppRates() {
   record( line( "createDefaultCoppRates" ) );
}

// ---- Policers and counters

bool RecordingQosAclHelper::createAndAttachPolicer( QosClassData const& classData ) {
   record( line( "createAndAttachPolicer" ).cls( classData ) );
   return boolAnswer( "createAndAttachPolicer", true );
}

void RecordingQosAclHelper::destroyPolicer( QosClassData const& classData ) {
   record( line( "destroyPolicer" ).cls( classData ) );
}

bool RecordingQosAclHelper::createAndAttachCoppPolicer( QosClassData const& classData ) {
   record( line( "createAndAttachCoppPolicer" ).cls( classData ) );
   return boolAnswer( "createAndAttachCoppPolicer", true );
}

void RecordingQosAclHelper::destroyCoppPolicer( QosClassData const& classData ) {
   record( line( "destroyCoppPolicer" ).cls( classData ) );
}

bool RecordingQosAclHelper::createCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key ) {
   record( line( "createCoppPolicerByPortQueue" ).queueKey( "key", key ) );
   return boolAnswer( "createCoppPolicerByPortQueue", true );
}

void RecordingQosAclHelper::destroyCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key ) {
   record( line( "destroyCoppPolicerByPortQueue" ).queueKey( "key", key ) );
}

void RecordingQosAclHelper::createAndAttachCounter( QosClassData const& classData ) {
   record( line( "createAndAttachCounter" ).cls( classData ) );
}

void RecordingQosAclHelper::destroyCounter( QosClassData const& classData ) {
   record( line( "destroyCounter" ).cls( classData ) );
}

// ---- Show

void RecordingQosAclHelper::showAclPolicyHeader( uint32_t socket, uint32_t unit,
                                                 QosPolicyMapState const& pmapState,
                                                 Nev::QosPolicyMapKey const& pmapKey ) {
   record( line( "showAclPolicyHeader" )
                 .num( "socket", socket )
                 .num( "unit", unit )
                 .pmap( pmapState )
                 .pmap( pmapKey, "pmapKey" ) );
}

void RecordingQosAclHelper::showAclClassHeader( uint32_t socket, uint32_t unit,
                                                Nev::QosClassMapKey const& cmapKey ) {
   std::string cmap( cmapKey.cmapName().view() );
   if( cmapKey.cmapType() != Qos::mapQos_ ) cmap += ":" + str( stringValue( cmapKey.cmapType() ) );
   record( line( "showAclClassHeader" )
                 .num( "socket", socket )
                 .num( "unit", unit )
                 .field( "cmapKey", cmap ) );
}

void RecordingQosAclHelper::showAclHeader( uint32_t socket, uint32_t unit, bool detail,
                                           QosClassData const& classData,
                                           ClassMapMatchOption matchOption, AclKey const& aclKey ) {
   record( line( "showAclHeader" )
                 .num( "socket", socket )
                 .num( "unit", unit )
                 .flag( "detail", detail )
                 .cls( classData )
                 .option( matchOption )
                 .aclKey( aclKey ) );
}

void RecordingQosAclHelper::showIpAclRule( uint32_t socket, uint32_t unit,
                                           QosClassData const& classData, AclKey const& aclKey,
                                           uint32_t sequence, Acl::UniqueId const& id ) {
   record( line( "showIpAclRule" )
                 .num( "socket", socket )
                 .num( "unit", unit )
                 .cls( classData )
                 .aclKey( aclKey )
                 .num( "sequence", sequence )
                 .id( "id", id ) );
}

void RecordingQosAclHelper::showDefaultRule( uint32_t socket, uint32_t unit,
                                             QosPolicyMapState const& pmapState,
                                             QosClassData const& classData,
                                             ClassMapMatchOption matchOption,
                                             AclKey const& aclKey ) {
   record( line( "showDefaultRule" )
                 .num( "socket", socket )
                 .num( "unit", unit )
                 .match( pmapState, classData, matchOption, aclKey ) );
}

void RecordingQosAclHelper::showL2ParamsRule( uint32_t socket, uint32_t unit,
                                              QosPolicyMapState const& pmapState,
                                              QosClassData const& classData,
                                              ClassMapMatchOption matchOption,
                                              AclKey const& aclKey ) {
   record( line( "showL2ParamsRule" )
                 .num( "socket", socket )
                 .num( "unit", unit )
                 .match( pmapState, classData, matchOption, aclKey ) );
}

void RecordingQosAclHelper::showMplsTrafficClassRule( uint32_t socket, uint32_t unit,
                                                      QosPolicyMapState const& pmapState,
                                                      QosClassData const& classData,
                                                      ClassMapMatchOption matchOption,
                                                      AclKey const& aclKey ) {
   record( line( "showMplsTrafficClassRule" )
                 .num( "socket", socket )
                 .num( "unit", unit )
                 .match( pmapState, classData, matchOption, aclKey ) );
}

void RecordingQosAclHelper::showDscpEcnRule( uint32_t socket, uint32_t unit,
                                             QosPolicyMapState const& pmapState,
                                             QosClassData const& classData,
                                             ClassMapMatchOption matchOption,
                                             AclKey const& aclKey ) {
   record( line( "showDscpEcnRule" )
                 .num( "socket", socket )
                 .num( "unit", unit )
                 .match( pmapState, classData, matchOption, aclKey ) );
}

void RecordingQosAclHelper::showMacAclRule( uint32_t socket, uint32_t unit,
                                            QosPolicyMapState const& pmapState,
                                            QosClassData const& classData,
                                            ClassMapMatchOption matchOption,
                                            AclKey const& aclKey ) {
   record( line( "showMacAclRule" )
                 .num( "socket", socket )
                 .num( "unit", unit )
                 .match( pmapState, classData, matchOption, aclKey ) );
}

// ---- Queries and capabilities

Nev::QosClassCounterData RecordingQosAclHelper::counterUpdateRequest( QosClassData const& classData,
                                                                      AclKey const& aclKey ) {
   record( line( "counterUpdateRequest" ).cls( classData ).aclKey( aclKey ) );
   auto it = counterData_.find( aclKey );
   return it != counterData_.end() ? it->second
                                   : QosAclHelper::counterUpdateRequest( classData, aclKey );
}

bool RecordingQosAclHelper::ipSubruleExists( QosClassData const& classData, AclKey const& aclKey,
                                             Acl::UniqueId const& aclId, uint32_t ruleNum,
                                             uint32_t subruleNum ) {
   record( line( "ipSubruleExists" )
                 .cls( classData )
                 .aclKey( aclKey )
                 .id( "aclId", aclId )
                 .num( "ruleNum", ruleNum )
                 .num( "subruleNum", subruleNum ) );
   return boolAnswer( "ipSubruleExists", QosAclHelper::ipSubruleExists( classData, aclKey, aclId,
                                                                        ruleNum, subruleNum ) );
}

bool RecordingQosAclHelper::ipPortRangeSubruleExists(
      QosClassData const& classData, AclKey const& aclKey, Acl::UniqueId const& aclId,
      uint32_t ruleNum, uint32_t subruleNum, uint16_t srcLow, uint16_t srcHigh, bool srcValid,
      uint16_t dstLow, uint16_t dstHigh, bool dstValid ) {
   record( line( "ipPortRangeSubruleExists" )
                 .cls( classData )
                 .aclKey( aclKey )
                 .id( "aclId", aclId )
                 .num( "ruleNum", ruleNum )
                 .num( "subruleNum", subruleNum )
                 .num( "srcLow", srcLow )
                 .num( "srcHigh", srcHigh )
                 .flag( "srcValid", srcValid )
                 .num( "dstLow", dstLow )
                 .num( "dstHigh", dstHigh )
                 .flag( "dstValid", dstValid ) );
   return boolAnswer( "ipPortRangeSubruleExists",
                      QosAclHelper::ipPortRangeSubruleExists( classData, aclKey, aclId, ruleNum,
                                                              subruleNum, srcLow, srcHigh, srcValid,
                                                              dstLow, dstHigh, dstValid ) );
}

bool RecordingQosAclHelper::ipLenRangeSubruleExists( QosClassData const& classData,
                                                     AclKey const& aclKey,
                                                     Acl::UniqueId const& aclId, uint32_t ruleNum,
                                                     uint32_t subruleNum, uint16_t ipLenLow,
                                                     uint16_t ipLenHigh, bool ipLenValid ) {
   record( line( "ipLenRangeSubruleExists" )
                 .cls( classData )
                 .aclKey( aclKey )
                 .id( "aclId", aclId )
                 .num( "ruleNum", ruleNum )
                 .num( "subruleNum", subruleNum )
                 .num( "ipLenLow", ipLenLow )
                 .num( "ipLenHigh", ipLenHigh )
                 .flag( "ipLenValid", ipLenValid ) );
   return boolAnswer( "ipLenRangeSubruleExists", true );
}

bool RecordingQosAclHelper::createSmForPMap( QosPolicyMapState const& pmapState ) {
   record( line( "createSmForPMap" ).pmap( pmapState ) );
   return boolAnswer( "createSmForPMap", QosAclHelper::createSmForPMap( pmapState ) );
}

bool RecordingQosAclHelper::managedPrioritySupported( Qos::MapType mapType ) {
   record( line( "managedPrioritySupported" ).field( "mapType", stringValue( mapType ).view() ) );
   return boolAnswer( "managedPrioritySupported",
                      QosAclHelper::managedPrioritySupported( mapType ) );
}

bool RecordingQosAclHelper::multipleActionsSupported() {
   record( line( "multipleActionsSupported" ) );
   return boolAnswer( "multipleActionsSupported", QosAclHelper::multipleActionsSupported() );
}

bool RecordingQosAclHelper::errorOnPolicerExhaustion() {
   record( line( "errorOnPolicerExhaustion" ) );
   return boolAnswer( "errorOnPolicerExhaustion", QosAclHelper::errorOnPolicerExhaustion() );
}

void RecordingQosAclHelper::cleanupForPMap( Nev::QosPolicyMapKey const& pmapKey ) {
   record( line( "cleanupForPMap" ).pmap( pmapKey ) );
}

void RecordingQosAclHelper::hwInit() {
   record( line( "hwInit" ) );
}

bool RecordingQosAclHelper::policiesInStableState() {
   record( line( "policiesInStableState" ) );
   return boolAnswer( "policiesInStableState", QosAclHelper::policiesInStableState() );
}

// ---- Verification

void RecordingQosAclHelper::verifyTcamData( QosClassData const& classData,
                                            ClassMapMatchOption matchOption,
                                            AclKey const& aclKey ) {
   record( line( "verifyTcamData" ).cls( classData ).option( matchOption ).aclKey( aclKey ) );
}

void RecordingQosAclHelper::verifyIpRuleGeneral( QosClassData const& classData,
                                                 AclKey const& aclKey, Acl::UniqueId const& aclId,
                                                 uint32_t ruleNum, uint32_t subruleNum,
                                                 uint32_t sequence ) {
   record( line( "verifyIpRuleGeneral" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence ) );
}

void RecordingQosAclHelper::verifyIpRuleAction( QosClassData const& classData, AclKey const& aclKey,
                                                Acl::UniqueId const& aclId, uint32_t ruleNum,
                                                uint32_t subruleNum, uint32_t sequence,
                                                Acl::Action action ) {
   record( line( "verifyIpRuleAction" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .field( "action", stringValue( action ).view() ) );
}

void RecordingQosAclHelper::verifyIpRuleIpProto( QosClassData const& classData,
                                                 AclKey const& aclKey, Acl::UniqueId const& aclId,
                                                 uint32_t ruleNum, uint32_t subruleNum,
                                                 uint32_t sequence, uint8_t expectedProto,
                                                 bool valid ) {
   record( line( "verifyIpRuleIpProto" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .num( "expectedProto", expectedProto )
                 .flag( "valid", valid ) );
}

void RecordingQosAclHelper::verifyIpRuleSrcIp( QosClassData const& classData, AclKey const& aclKey,
                                               Acl::UniqueId const& aclId, uint32_t ruleNum,
                                               uint32_t subruleNum, uint32_t sequence,
                                               uint32_t expectedAddr, uint32_t expectedMask,
                                               bool valid ) {
   record( line( "verifyIpRuleSrcIp" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .num( "expectedAddr", expectedAddr )
                 .num( "expectedMask", expectedMask )
                 .flag( "valid", valid ) );
}

void RecordingQosAclHelper::verifyIpRuleDstIp( QosClassData const& classData, AclKey const& aclKey,
                                               Acl::UniqueId const& aclId, uint32_t ruleNum,
                                               uint32_t subruleNum, uint32_t sequence,
                                               uint32_t expectedAddr, uint32_t expectedMask,
                                               bool valid ) {
   record( line( "verifyIpRuleDstIp" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .num( "expectedAddr", expectedAddr )
                 .num( "expectedMask", expectedMask )
                 .flag( "valid", valid ) );
}

void RecordingQosAclHelper::verifyIpRuleDscp( QosClassData const& classData, AclKey const& aclKey,
                                              Acl::UniqueId const& aclId, uint32_t ruleNum,
                                              uint32_t subruleNum, uint32_t sequence,
                                              uint8_t expectedDscp, bool valid ) {
   record( line( "verifyIpRuleDscp" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .num( "expectedDscp", expectedDscp )
                 .flag( "valid", valid ) );
}

void RecordingQosAclHelper::verifyIpRuleTcIp6( QosClassData const& classData, AclKey const& aclKey,
                                               Acl::UniqueId const& aclId, uint32_t ruleNum,
                                               uint32_t subruleNum, uint32_t sequence,
                                               uint8_t expectedDscp, bool valid ) {
   record( line( "verifyIpRuleTcIp6" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .num( "expectedDscp", expectedDscp )
                 .flag( "valid", valid ) );
}

void RecordingQosAclHelper::verifyIpRuleEcn( QosClassData const& classData, AclKey const& aclKey,
                                             Acl::UniqueId const& aclId, uint32_t ruleNum,
                                             uint32_t subruleNum, uint32_t sequence,
                                             uint8_t ecnData, uint8_t ecnMask ) {
   record( line( "verifyIpRuleEcn" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .num( "ecnData", ecnData )
                 .num( "ecnMask", ecnMask ) );
}

void RecordingQosAclHelper::verifyIpRuleEcnIp6( QosClassData const& classData, AclKey const& aclKey,
                                                Acl::UniqueId const& aclId, uint32_t ruleNum,
                                                uint32_t subruleNum, uint32_t sequence,
                                                uint8_t ecnData, uint8_t ecnMask ) {
   record( line( "verifyIpRuleEcnIp6" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .num( "ecnData", ecnData )
                 .num( "ecnMask", ecnMask ) );
}

void RecordingQosAclHelper::verifyIpRuleSrcIp6( QosClassData const& classData, AclKey const& aclKey,
                                                Acl::UniqueId const& aclId, uint32_t ruleNum,
                                                uint32_t subruleNum, uint32_t sequence,
                                                Mirel::Ip6AddrWithMask const& expectedDstAddr,
                                                bool valid ) {
   record( line( "verifyIpRuleSrcIp6" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .field( "expectedDstAddr", stringValue( expectedDstAddr ).view() )
                 .flag( "valid", valid ) );
}

void RecordingQosAclHelper::verifyIpRuleDstIp6( QosClassData const& classData, AclKey const& aclKey,
                                                Acl::UniqueId const& aclId, uint32_t ruleNum,
                                                uint32_t subruleNum, uint32_t sequence,
                                                Mirel::Ip6AddrWithMask const& expectedDstAddr,
                                                bool valid ) {
   record( line( "verifyIpRuleDstIp6" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .field( "expectedDstAddr", stringValue( expectedDstAddr ).view() )
                 .flag( "valid", valid ) );
}

void RecordingQosAclHelper::verifyIpRuleFragments( QosClassData const& classData,
                                                   AclKey const& aclKey, Acl::UniqueId const& aclId,
                                                   uint32_t ruleNum, uint32_t subruleNum,
                                                   uint32_t sequence, bool matchHeadOnly,
                                                   bool matchFragmentsOnly ) {
   record( line( "verifyIpRuleFragments" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .flag( "matchHeadOnly", matchHeadOnly )
                 .flag( "matchFragmentsOnly", matchFragmentsOnly ) );
}

void RecordingQosAclHelper::verifyIpRuleTcpFlags( QosClassData const& classData,
                                                  AclKey const& aclKey, Acl::UniqueId const& aclId,
                                                  uint32_t ruleNum, uint32_t subruleNum,
                                                  uint32_t sequence, uint8_t expectedTcpFlags,
                                                  bool valid ) {
   record( line( "verifyIpRuleTcpFlags" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .num( "expectedTcpFlags", expectedTcpFlags )
                 .flag( "valid", valid ) );
}

void RecordingQosAclHelper::verifyIpRuleIcmp( QosClassData const& classData, AclKey const& aclKey,
                                              Acl::UniqueId const& aclId, uint32_t ruleNum,
                                              uint32_t subruleNum, uint32_t sequence,
                                              uint8_t expexctedIcmpType, uint8_t expectedIcmpCode,
                                              bool icmpTypeValid, bool icmpCodeValid ) {
   record( line( "verifyIpRuleIcmp" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .num( "expexctedIcmpType", expexctedIcmpType )
                 .num( "expectedIcmpCode", expectedIcmpCode )
                 .flag( "icmpTypeValid", icmpTypeValid )
                 .flag( "icmpCodeValid", icmpCodeValid ) );
}

void RecordingQosAclHelper::verifyIpRuleSrcPort( QosClassData const& classData,
                                                 AclKey const& aclKey, Acl::UniqueId const& aclId,
                                                 uint32_t ruleNum, uint32_t subruleNum,
                                                 uint32_t sequence, uint16_t expectedLow,
                                                 uint16_t expectedHigh, bool valid ) {
   record( line( "verifyIpRuleSrcPort" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .num( "expectedLow", expectedLow )
                 .num( "expectedHigh", expectedHigh )
                 .flag( "valid", valid ) );
}

void RecordingQosAclHelper::verifyIpRuleDstPort( QosClassData const& classData,
                                                 AclKey const& aclKey, Acl::UniqueId const& aclId,
                                                 uint32_t ruleNum, uint32_t subruleNum,
                                                 uint32_t sequence, uint16_t expectedLow,
                                                 uint16_t expectedHigh, bool valid ) {
   record( line( "verifyIpRuleDstPort" )
                 .ruleCheck( classData, aclKey, aclId, ruleNum, subruleNum, sequence )
                 .num( "expectedLow", expectedLow )
                 .num( "expectedHigh", expectedHigh )
                 .flag( "valid", valid ) );
}

void RecordingQosAclHelper::verifyIpRuleVlanMatch( QosClassData const& classData,
                                                   AclKey const& aclKey, Acl::UniqueId const& aclId,
                                                   uint32_t ruleNum, uint32_t subruleNum,
                                                   uint16_t expectedVlanId,
                                                   uint16_t expectedVlanIdMask, bool valid ) {
   record( line( "verifyIpRuleVlanMatch" )
                 .cls( classData )
                 .aclKey( aclKey )
                 .id( "aclId", aclId )
                 .num( "ruleNum", ruleNum )
                 .num( "subruleNum", subruleNum )
                 .num( "expectedVlanId", expectedVlanId )
                 .num( "expectedVlanIdMask", expectedVlanIdMask )
                 .flag( "valid", valid ) );
}

void RecordingQosAclHelper::verifyAclGeneral( QosClassData const& classData,
                                              ClassMapMatchOption matchOption,
                                              AclKey const& aclKey ) {
   record( line( "verifyAclGeneral" ).cls( classData ).option( matchOption ).aclKey( aclKey ) );
}

void RecordingQosAclHelper::verifyRulePorts( QosPolicyMapState const& pmapState,
                                             QosClassData const& classData,
                                             ClassMapMatchOption matchOption, AclKey const& aclKey,
                                             Acl::UniqueId const& aclId, uint32_t ruleNum,
                                             uint32_t subruleNum, uint32_t sequence,
                                             Acl::Action action ) {
   record( line( "verifyRulePorts" )
                 .match( pmapState, classData, matchOption, aclKey )
                 .id( "aclId", aclId )
                 .num( "ruleNum", ruleNum )
                 .num( "subruleNum", subruleNum )
                 .num( "sequence", sequence )
                 .field( "action", stringValue( action ).view() ) );
}

void RecordingQosAclHelper::verifyDefaultRule( QosPolicyMapState const& pmapState,
                                               QosClassData const& classData,
                                               ClassMapMatchOption matchOption,
                                               AclKey const& aclKey ) {
   record( line( "verifyDefaultRule" ).match( pmapState, classData, matchOption, aclKey ) );
}

void RecordingQosAclHelper::verifyL2ParamsRule( QosPolicyMapState const& pmapState,
                                                QosClassData const& classData,
                                                ClassMapMatchOption matchOption,
                                                AclKey const& aclKey ) {
   record( line( "verifyL2ParamsRule" ).match( pmapState, classData, matchOption, aclKey ) );
}

void RecordingQosAclHelper::verifyMplsTrafficClassRule( QosPolicyMapState const& pmapState,
                                                        QosClassData const& classData,
                                                        ClassMapMatchOption matchOption,
                                                        AclKey const& aclKey ) {
   record(
         line( "verifyMplsTrafficClassRule" ).match( pmapState, classData, matchOption, aclKey ) );
}

void RecordingQosAclHelper::verifyDscpEcnRule( QosPolicyMapState const& pmapState,
                                               QosClassData const& classData,
                                               ClassMapMatchOption matchOption,
                                               AclKey const& aclKey ) {
   record( line( "verifyDscpEcnRule" ).match( pmapState, classData, matchOption, aclKey ) );
}

void RecordingQosAclHelper::verifyMacAclRule( QosPolicyMapState const& pmapState,
                                              QosClassData const& classData,
                                              ClassMapMatchOption matchOption,
                                              AclKey const& aclKey ) {
   record( line( "verifyMacAclRule" ).match( pmapState, classData, matchOption, aclKey ) );
}

void RecordingQosAclHelper::verifyPolicer( QosClassData const& classData ) {
   record( line( "verifyPolicer" ).cls( classData ) );
}

void RecordingQosAclHelper::verifyCounter( QosClassData const& classData ) {
   record( line( "verifyCounter" ).cls( classData ) );
}

// ---- Interfaces and names

void RecordingQosAclHelper::handleRoutedPortSubIntfAclSharing() {
   record( line( "handleRoutedPortSubIntfAclSharing" ) );
}

void RecordingQosAclHelper::handleSubIntfForwardingModel( Mirel::IntfId const& intfId ) {
   record( line( "handleSubIntfForwardingModel" ).field( "intfId", intfId.stringValue().view() ) );
}

void RecordingQosAclHelper::handleSubIntfDeletion( Mirel::IntfId const& intfId ) {
   record( line( "handleSubIntfDeletion" ).field( "intfId", intfId.stringValue().view() ) );
}

Zub::String RecordingQosAclHelper::cpuQIdToClassMapName( uint32_t cpuQId ) {
   record( line( "cpuQIdToClassMapName" ).num( "cpuQId", cpuQId ) );
   auto it = classMapNames_.find( cpuQId );
   return it != classMapNames_.end() ? it->second : Zub::format( "cpu-queue-%u", cpuQId );
}

Zub::String RecordingQosAclHelper::portToIntfName( uint32_t modId, uint32_t port ) {
   record( line( "portToIntfName" ).num( "modId", modId ).num( "port", port ) );
   auto it = intfNames_.find( { modId, port } );
   return it != intfNames_.end() ? it->second : Zub::format( "port-%u/%u", modId, port );
}

bool RecordingQosAclHelper::delaySviPmapSmCreation() {
   record( line( "delaySviPmapSmCreation" ) );
   return boolAnswer( "delaySviPmapSmCreation", QosAclHelper::delaySviPmapSmCreation() );
}

}  // namespace NevQosTest
