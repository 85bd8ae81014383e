#include "NevQos/match/MatchOptionCompiler.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/mirel/RangeMaskGen.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

namespace {

using ByteBlocks = std::vector< Mirel::RangeMaskGen< unsigned char >::Entry >;
using BytePairs = std::vector< std::pair< std::uint8_t, std::uint8_t > >;

// The invalid COS: a tuple with it and mask 0 has no COS condition.
constexpr std::uint8_t noCos = 8;
// The VLAN of a tuple without a VLAN condition; its mask is 0.
constexpr std::uint16_t anyVlan = 4095;

template< class Ranges >
ByteBlocks byteBlocksOf( Ranges const& ranges ) {
   ByteBlocks blocks;
   for( auto it = ranges.iter(); it; ++it ) {
      Mirel::RangeMaskGen< unsigned char >::run( it.key().low(), it.key().high(), blocks );
   }
   return blocks;
}

std::vector< L2ParamsInfo > vlanTuples( Qos::ClassMapMatchVlan const& vlan ) {
   std::vector< L2ParamsInfo > out;
   if( vlan.maskValid() ) {
      out.emplace_back( vlan.vlan(), vlan.vlanMask(), noCos, 0 );
      return out;
   }
   std::vector< Mirel::RangeMaskGen< unsigned short >::Entry > blocks;
   for( auto it = vlan.vlanColl().iter(); it; ++it ) {
      Mirel::RangeMaskGen< unsigned short >::run( it.key().low(), it.key().high(), blocks );
   }
   for( auto const& b : blocks ) {
      out.emplace_back( b.value, static_cast< std::uint16_t >( b.mask & 0xfff ), noCos, 0 );
   }
   return out;
}

std::vector< L2ParamsInfo > cosTuples( ClassMapMatchCos const& cos ) {
   std::vector< L2ParamsInfo > out;
   for( auto const& b : byteBlocksOf( cos.cosColl() ) ) {
      out.emplace_back( anyVlan, 0, b.value, static_cast< std::uint8_t >( b.mask & 7 ) );
   }
   return out;
}

NevHelper::QosAclHelper& helperOf( MatchOptionTarget const& t ) {
   return *t.qosAclSm.qosHelper();
}

QosPolicyMapState const& pmapStateOf( MatchOptionTarget const& t ) {
   return *t.pmapSm.pmapState();
}

// True when the answer ends the ACL.
bool endsAcl( MatchOptionTarget const& t, OptionRuleAnswers answers, AclCreateError error ) {
   switch( answers ) {
      case OptionRuleAnswers::reported:
         return t.qosAclSm.updatePolicyMapErrorState( error, t.pmapSm.key(), t.aclData );
      case OptionRuleAnswers::mustSucceed:
         ZUB_ASSERT_TEXT( error == aclCreateErrorNone, "aclError == aclCreateErrorNone()" );
         return false;
   }
   return true;
}

// One helper call per entry, numbered from the target's first rule: `call( entry, ruleNum )`
// writes the entry's values into the class data and makes the call.
template< class Entry, class Call >
OptionRuleLoop createEachRule( MatchOptionTarget const& t, OptionRuleAnswers answers,
                               std::vector< Entry > const& entries, Call const& call ) {
   OptionRuleLoop loop;
   std::uint32_t ruleNum = t.ruleNum;
   for( Entry const& entry : entries ) {
      loop.last = call( entry, ruleNum++ );
      if( endsAcl( t, answers, loop.last ) ) {
         loop.failed = true;
         break;
      }
   }
   return loop;
}

AclCreateError precreate( MatchOptionTarget const& t ) {
   return helperOf( t ).precreateAcl( pmapStateOf( t ), *t.classData, t.matchOption, t.aclKey );
}

// The immediate road after the working copy is made: precreate the ACL, make its rules with
// every answer reported, and report the last answer once more for the ACL as a whole.
bool compileReported( MatchOptionTarget const& t,
                      OptionRuleLoop ( *rules )( MatchOptionTarget const&, OptionRuleAnswers ) ) {
   AclCreateError last = precreate( t );
   if( last == aclCreateErrorNone ) {
      OptionRuleLoop const loop = rules( t, OptionRuleAnswers::reported );
      if( loop.failed ) return false;
      last = loop.last;
   }
   return !t.qosAclSm.updatePolicyMapErrorState( last, t.pmapSm.key(), t.aclData );
}

}  // namespace

// ---- Lists of rules

void populateL2ParamsInfoVector( std::vector< L2ParamsInfo >& out, QosClassData const& classData,
                                 Qos::ClassMapMatchOption matchOption ) {
   auto const l2 = classData.l2ParamsValue();
   if( !l2 ) return;
   bool const vlanOption =
         matchOption == Qos::matchOptionVlan || matchOption == Qos::matchOptionVlanCos;
   bool const cosOption =
         matchOption == Qos::matchOptionCos || matchOption == Qos::matchOptionVlanCos;
   std::vector< L2ParamsInfo > vlans;
   std::vector< L2ParamsInfo > coses;
   if( auto const vlan = l2->vlanValue(); vlan && vlanOption ) vlans = vlanTuples( *vlan );
   if( auto const cos = l2->cosValue(); cos && cosOption ) coses = cosTuples( *cos );
   if( !cosOption ) {
      out.insert( out.end(), vlans.begin(), vlans.end() );
   } else if( !vlanOption ) {
      out.insert( out.end(), coses.begin(), coses.end() );
   } else {
      for( L2ParamsInfo const& c : coses ) {
         for( L2ParamsInfo const& v : vlans ) {
            out.emplace_back( v.vlan(), v.vlanMask(), c.cos(), c.cosMask() );
         }
      }
   }
}

BytePairs dscpEcnTosPairs( Qos::ClassMapMatchDscpEcn const& value ) {
   // Without ranges or a DSCP the match takes any DSCP: one block, with its mask cleared.
   bool const anyDscp = value.dscpColl().empty() && !value.dscp().isValid();
   ByteBlocks blocks;
   if( !value.dscpColl().empty() ) {
      blocks = byteBlocksOf( value.dscpColl() );
   } else {
      std::uint8_t const dscp = anyDscp ? 0 : value.dscp().value();
      Mirel::RangeMaskGen< unsigned char >::run( dscp, dscp, blocks );
   }
   ZUB_TRACE( nevQosTrace, 5, " dscpRangeVector size = " << blocks.size() );
   BytePairs tos;
   for( auto const& b : blocks ) {
      unsigned char const mask = anyDscp ? 0 : b.mask;
      ZUB_TRACE( nevQosTrace, 5,
                 " dscpRangeVector Entries (value, mask) = (" << unsigned( b.value ) << ", "
                                                              << unsigned( mask ) << ")" );
      effectiveTosIdMask< unsigned char >( value.ecn(), b.value, mask, tos );
   }
   return tos;
}

BytePairs mplsTrafficClassPairs( Qos::ClassMapMatchMplsTrafficClass const& value ) {
   BytePairs out;
   for( auto const& b : byteBlocksOf( value.mplsTrafficClassColl() ) ) {
      out.emplace_back( b.value, static_cast< std::uint8_t >( b.mask & 7 ) );
   }
   return out;
}

// ---- Working copies

void copyDscpEcnValue( Qos::ClassMapMatch const& classMatch, QosClassData& classData ) {
   auto const from = classMatch.dscpEcnValue();
   if( !from ) {
      classData.dscpEcnValueIs( nullptr );
      return;
   }
   auto const to = Zub::make< Qos::ClassMapMatchDscpEcn >( from->dscp(), from->ecn() );
   to->dscpNameValidIs( from->dscpNameValid() );
   to->tosMaskIs( from->tosMask() );
   to->tosIdIs( from->tosId() );
   for( auto it = from->dscpColl().iter(); it; ++it )
      to->dscpCollIs( it.key(), it.value() );
   classData.dscpEcnValueIs( to );
}

void copyMplsTrafficClassValue( Qos::ClassMapMatch const& classMatch, QosClassData& classData ) {
   auto const to = Zub::make< Qos::ClassMapMatchMplsTrafficClass >( Zub::String() );
   if( auto const from = classMatch.mplsTrafficClassValue() ) {
      for( auto it = from->mplsTrafficClassColl().iter(); it; ++it ) {
         to->mplsTrafficClassCollIs( it.key(), it.value() );
      }
   }
   classData.mplsTrafficClassValIs( to );
   classData.mplsTrafficClassTupleIs( Zub::make< Qos::MplsTrafficClassTuple >( Zub::String() ) );
}

void copyMacValue( Qos::ClassMapMatch const& classMatch, QosClassData& classData ) {
   auto const to = Zub::make< Qos::ClassMapMatchMac >( Zub::String() );
   to->aclNameIs( Zub::Name( classMatch.strValue() ) );
   classData.macValueIs( to );
}

// ---- Rule loops

OptionRuleLoop createL2ParamsRules( MatchOptionTarget const& t, OptionRuleAnswers answers ) {
   std::vector< L2ParamsInfo > tuples;
   populateL2ParamsInfoVector( tuples, *t.classData, t.matchOption );
   return createEachRule(
         t, answers, tuples, [ & ]( L2ParamsInfo const& tuple, std::uint32_t ruleNum ) {
            t.qosAclSm.populateClassDataL2ParamsValue( t.classData, tuple );
            return helperOf( t ).createL2ParamsRule( pmapStateOf( t ), *t.classData, t.matchOption,
                                                     t.aclKey, ruleNum );
         } );
}

OptionRuleLoop createDscpEcnRules( MatchOptionTarget const& t, OptionRuleAnswers answers ) {
   auto const value = t.classData->dscpEcnValue();
   if( !value ) return OptionRuleLoop();  // a match without its value has no rule
   return createEachRule(
         t, answers, dscpEcnTosPairs( *value ),
         [ & ]( std::pair< std::uint8_t, std::uint8_t > const& tos, std::uint32_t ruleNum ) {
            ZUB_TRACE( nevQosTrace, 5,
                       " idToProgram = " << unsigned( tos.first )
                                         << ", maskToProgram = " << unsigned( tos.second ) );
            value->tosIdIs( tos.first );
            value->tosMaskIs( tos.second );
            return helperOf( t ).createDscpEcnRule( pmapStateOf( t ), *t.classData, t.matchOption,
                                                    t.aclKey, ruleNum );
         } );
}

OptionRuleLoop createMplsTrafficClassRules( MatchOptionTarget const& t,
                                            OptionRuleAnswers answers ) {
   auto const value = t.classData->mplsTrafficClassVal();
   auto const tuple = t.classData->mplsTrafficClassTuple();
   ZUB_ASSERT( value && tuple );
   return createEachRule(
         t, answers, mplsTrafficClassPairs( *value ),
         [ & ]( std::pair< std::uint8_t, std::uint8_t > const& tc, std::uint32_t ruleNum ) {
            tuple->mplsTrafficClassValIs( Qos::MplsTrafficClassVal( tc.first ) );
            tuple->mplsTrafficClassMaskIs( Qos::MplsTrafficClassVal( tc.second ) );
            return helperOf( t ).createMplsTrafficClassRule( pmapStateOf( t ), *t.classData,
                                                             t.matchOption, t.aclKey, ruleNum );
         } );
}

bool macListTakesARule( MatchOptionTarget const& t ) {
   auto const mac = t.classData->macValue();
   auto const typeConfig = t.qosAclSm.mainAclConfig()->config( Acl::mac() );
   Zub::Ptr< Acl::AclConfig const > const aclConfig =
         mac && typeConfig ? typeConfig->acl( mac->aclName() ) : nullptr;
   auto const rules = aclConfig ? aclConfig->currCfg() : nullptr;
   // Without the list, whether it holds a rule is the chip's to say.
   if( !rules ) return true;
   for( auto it = rules->ruleBySequence().iter(); it; ++it ) {
      if( helperOf( t ).isSupportedMacAclRule( rules->macRuleById( it.value() ) ) ) return true;
   }
   return false;
}

OptionRuleLoop createMacAclRules( MatchOptionTarget const& t, OptionRuleAnswers answers ) {
   auto const mac = t.classData->macValue();
   ZUB_ASSERT_TEXT( mac && !mac->aclName().empty(), "classData->macValue()->aclName()" );
   auto const typeConfig = t.qosAclSm.mainAclConfig()->config( Acl::mac() );
   Zub::Ptr< Acl::AclConfig const > const aclConfig =
         typeConfig ? typeConfig->acl( mac->aclName() ) : nullptr;
   ZUB_ASSERT_TEXT( aclConfig, "aclConfig" );
   auto const rules = aclConfig->currCfg();
   ZUB_ASSERT_TEXT( rules, "aclConfig->currCfg()" );
   NevHelper::QosAclHelper& helper = helperOf( t );
   OptionRuleLoop loop;
   std::uint32_t ruleNum = t.ruleNum;
   for( auto it = rules->ruleBySequence().iter(); it; ++it ) {
      Acl::MacRuleConfig const rule = rules->macRuleById( it.value() );
      if( !helper.isSupportedMacAclRule( rule ) ) continue;
      mac->etherTypeIs( rule.filter.etherType );
      loop.last = helper.createMacAclRule( pmapStateOf( t ), *t.classData, t.matchOption, t.aclKey,
                                           ruleNum );
      if( endsAcl( t, answers, loop.last ) ) {
         loop.failed = true;
         break;
      }
      ++ruleNum;
   }
   return loop;
}

OptionRuleLoop createBuiltInClassMatchRules( MatchOptionTarget const& t,
                                             OptionRuleAnswers answers ) {
   // The chip knows what the class matches: one rule, and no ACL key.
   OptionRuleLoop loop;
   loop.last = helperOf( t ).createBuiltInClassMatchRule( pmapStateOf( t ), *t.classData,
                                                          t.matchOption, t.ruleNum );
   loop.failed = endsAcl( t, answers, loop.last );
   return loop;
}

// ---- Immediate compiles

bool createClassMatchL2ParamsAcl( MatchOptionTarget const& t,
                                  Zub::Ptr< Qos::ClassMapMatch const > const& classMatch ) {
   t.qosAclSm.createClassDataL2ParamsValue( classMatch, t.classData );
   return compileReported( t, createL2ParamsRules );
}

bool createClassMatchDscpEcnAcl( MatchOptionTarget const& t,
                                 Zub::Ptr< Qos::ClassMapMatch const > const& classMatch ) {
   copyDscpEcnValue( *classMatch, *t.classData );
   return compileReported( t, createDscpEcnRules );
}

bool createClassMatchMplsTrafficClassAcl( MatchOptionTarget const& t,
                                          Zub::Ptr< Qos::ClassMapMatch const > const& classMatch ) {
   copyMplsTrafficClassValue( *classMatch, *t.classData );
   return compileReported( t, createMplsTrafficClassRules );
}

bool macRulesIgnoredBesideIpv6( MatchOptionTarget const& t ) {
   return t.pmapSm.ipv6AccessGroupCount() != 0 && !helperOf( t ).isMacAclRuleSupportedPlatform();
}

bool createClassMatchMacAcl( MatchOptionTarget const& t,
                             Zub::Ptr< Qos::ClassMapMatch const > const& classMatch ) {
   copyMacValue( *classMatch, *t.classData );
   if( macRulesIgnoredBesideIpv6( t ) ) {
      // No rule of the MAC list is programmed beside an IPv6 access group.
      Zub::log( QOS_MAC_ACL_RULE_IPV6_MISMATCH, t.pmapSm.pmapName(),
                t.classData->key().cmapName() );
      return false;
   }
   // A refused rule fails the map as in every other list: a list short of its rules is not what
   // the configuration asks for.
   return compileReported( t, createMacAclRules );
}

bool createBuiltInClassMatchAcl( MatchOptionTarget const& t,
                                 Zub::Ptr< Qos::ClassMapMatch const > const& classMatch ) {
   t.classData->builtInClassMatchValueIs( classMatch->builtInValue() );
   return compileReported( t, createBuiltInClassMatchRules );
}

}  // namespace Nev
