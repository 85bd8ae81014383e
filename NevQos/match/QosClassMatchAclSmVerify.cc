// The comparison of an access group with the hardware: the compile of each rule is replayed, and
// at each subrule number the helper is asked what it holds. The helper compares the fields; the
// four findings about a subrule's presence are made here.
#include <string_view>
#include <type_traits>

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/match/IpAclCompiler.h"
#include "NevQos/match/QosClassMatchAclSm.h"
#include "NevQos/match/QosClassMatchSm.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"
#include "nev/AclFragMap.h"
#include "nev/AclIpRuleCreateData.h"
#include "zub/Assert.h"
#include "zub/Exception.h"
#include "zub/Format.h"

namespace Nev {

namespace {

bool fullRange( std::uint16_t low, std::uint16_t high ) {
   return low == 0 && high == 0xffff;
}

}  // namespace

void QosClassMatchAclSm::showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) {
   QosClassMatchChildSm::showAcl( socket, unit, detail );
   if( !detail ) return;
   auto const rules = aclConfig()->currCfg();
   if( !rules ) return;
   if( aclType() != Acl::ip() && aclType() != Acl::ipv6() ) return;
   for( auto it = rules->ruleBySequence().iter(); it; ++it )
      helper().showIpAclRule( socket, unit, *classData(), key(), it.key(), it.value() );
}

void QosClassMatchAclSm::handleVerify() {
   if( helper().asyncTcamOperationsSupported() ) {
      // The deferred road keeps no per-rule state to replay: the helper checks the whole ACL.
      helper().verifyAclGeneral( *classData(), matchOption(), key() );
      helper().verifyTcamData( *classData(), matchOption(), key() );
      return;
   }
   reportIfDestroying();
   auto const rules = aclConfig()->currCfg();
   if( !initialized() || !rules ) return;
   helper().verifyAclGeneral( *classData(), matchOption(), key() );
   std::uint32_t ruleNum = 0;
   for( auto it = rules->ruleBySequence().iter(); it; ++it ) {
      verifyIpRule( ruleNum, it.value(), it.key() );
      ++ruleNum;
   }
}

void QosClassMatchAclSm::verifyIpRule( std::uint32_t ruleNum, Acl::UniqueId const& aclId,
                                       std::uint32_t sequence ) {
   auto const rules = aclConfig()->currCfg();
   std::uint32_t const supported = helper().supportedTcpFlags().value();
   if( aclType() == Acl::ip() ) {
      Acl::IpRuleConfig rule = rules->ipRuleById( aclId );
      detail::narrowTcpFlags( rule.filter, supported );
      verifyRuleSubrules( rule, RuleCheck{ aclId, ruleNum, sequence, rule.action, false } );
   } else if( aclType() == Acl::ipv6() ) {
      Acl::Ip6RuleConfig rule = rules->ip6RuleById( aclId );
      detail::narrowTcpFlags( rule.filter, supported );
      verifyRuleSubrules( rule, RuleCheck{ aclId, ruleNum, sequence, rule.action, false } );
   } else {
      detail::unknownAclType();
   }
}

template< class Rule >
void QosClassMatchAclSm::verifyRuleSubrules( Rule const& rule, RuleCheck check ) {
   auto const& filter = rule.filter;
   AclIpRuleCreateData_ data;
   createIpAclRuleData( filter, data, helper().qosEcnSupport(), helper().establishedSupported() );
   check.l4Rule = data.l4Rule;
   bool const permit = check.action == Acl::actionPermit;
   char const* const name = aclName().charPtr();
   auto const sequence = static_cast< int >( check.sequence );
   auto const ruleNum = static_cast< int >( check.ruleNum );
   // The compile left the rule out: there is nothing to compare.
   bool const vlanConflict =
         permit && unsupportedIpRule( pmapState(), pmapSm()->pmapType(), filter );
   bool const portAbsent = permit && ownerPortAbsent();
   auto const common = [ & ]( std::uint32_t subrule, std::uint8_t tcpFlag, std::uint8_t ecnData,
                              std::uint8_t ecnMask ) {
      if constexpr( std::is_same_v< Rule, Acl::IpRuleConfig > ) {
         verifyIpRuleCommon( rule, check, subrule, tcpFlag, ecnData, ecnMask );
      } else {
         verifyIp6RuleCommon( rule, check, subrule, tcpFlag, ecnData, ecnMask );
      }
   };
   std::uint32_t subruleNum = 0;
   for( auto ecn = data.ecnRules.ecnRules().iter(); ecn; ++ecn ) {
      for( unsigned s = 1; s <= data.srcPortCount; ++s ) {
         auto const [ srcLow, srcHigh ] = data.srcPortRange[ s ];
         for( unsigned d = 1; d <= data.dstPortCount; ++d ) {
            auto const [ dstLow, dstHigh ] = data.dstPortRange[ d ];
            for( unsigned t = 1; t <= data.tcpFlagCount; ++t ) {
               std::uint8_t const tcpFlag = data.tcpFlag[ t ];
               for( unsigned l = 1; l <= data.ipLenCount; ++l ) {
                  bool const exists = helper().ipSubruleExists( *classData(), key(), check.aclId,
                                                                check.ruleNum, subruleNum );
                  auto const subrule = static_cast< int >( subruleNum );
                  if( !permit ) {
                     if( exists ) {
                        NEV_VERIFY_FAILURE(
                              verifyReport(),
                              Zub::format( "ACL %s sequence %d rule %d subrule %d exist for "
                                           "action %d",
                                           name, sequence, ruleNum, subrule,
                                           static_cast< int >( check.action ) ) );
                     }
                     ++subruleNum;
                     continue;
                  }
                  if( portAbsent ) {
                     if( exists ) {
                        NEV_VERIFY_FAILURE(
                              verifyReport(),
                              Zub::format( "ACL %s sequence %d rule %d subrule %d should not exist",
                                           name, sequence, ruleNum, subrule ) );
                     }
                     continue;
                  }
                  if( vlanConflict ) {
                     ++subruleNum;
                     continue;
                  }
                  if( !exists ) {
                     NEV_VERIFY_FAILURE(
                           verifyReport(),
                           Zub::format( "ACL %s sequence %d rule %d subrule %d doesn't exist", name,
                                        sequence, ruleNum, subrule ) );
                  }
                  bool const ranged = helper().ipPortRangeSubruleExists(
                        *classData(), key(), check.aclId, check.ruleNum, subruleNum, srcLow,
                        srcHigh, !fullRange( srcLow, srcHigh ), dstLow, dstHigh,
                        !fullRange( dstLow, dstHigh ) );
                  if( !ranged ) {
                     // Expanded into blocks: one entry per pair of blocks.
                     for( auto const& src : data.srcPortMasks[ s ] ) {
                        for( auto const& dst : data.dstPortMasks[ d ] ) {
                           common( subruleNum, tcpFlag, ecn.key(), ecn.value() );
                           helper().verifyIpRuleSrcPort( *classData(), key(), check.aclId,
                                                         check.ruleNum, subruleNum, check.sequence,
                                                         src.value, src.high,
                                                         !fullRange( src.value, src.high ) );
                           helper().verifyIpRuleDstPort( *classData(), key(), check.aclId,
                                                         check.ruleNum, subruleNum, check.sequence,
                                                         dst.value, dst.high,
                                                         !fullRange( dst.value, dst.high ) );
                           ++subruleNum;
                        }
                     }
                     continue;
                  }
                  common( subruleNum, tcpFlag, ecn.key(), ecn.value() );
                  if( filter.proto != 1 ) {
                     helper().verifyIpRuleSrcPort( *classData(), key(), check.aclId, check.ruleNum,
                                                   subruleNum, check.sequence, srcLow, srcHigh,
                                                   !fullRange( srcLow, srcHigh ) );
                     helper().verifyIpRuleDstPort( *classData(), key(), check.aclId, check.ruleNum,
                                                   subruleNum, check.sequence, dstLow, dstHigh,
                                                   !fullRange( dstLow, dstHigh ) );
                  } else {
                     helper().verifyIpRuleIcmp( *classData(), key(), check.aclId, check.ruleNum,
                                                subruleNum, check.sequence, filter.icmpType,
                                                filter.icmpCode, filter.icmpTypeValid,
                                                filter.icmpCodeValid );
                  }
                  ++subruleNum;
               }
            }
         }
      }
   }
   if( !check.l4Rule || !permit || vlanConflict || portAbsent ) return;
   // The entry after the last subrule, if any, lets the rule's non-first fragments through.
   if( helper().ipSubruleExists( *classData(), key(), check.aclId, check.ruleNum, subruleNum ) ) {
      verifyIpFragEntry( rule, check, subruleNum );
   }
}

void QosClassMatchAclSm::verifyIpRuleCommon( Acl::IpRuleConfig const& rule, RuleCheck const& check,
                                             std::uint32_t subruleNum, std::uint8_t tcpFlag,
                                             std::uint8_t ecnData, std::uint8_t ecnMask ) {
   auto const& f = rule.filter;
   auto& h = helper();
   auto const& cd = *classData();
   h.verifyIpRuleGeneral( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence );
   h.verifyIpRuleIpProto( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                          f.proto, f.proto != 0 );
   h.verifyIpRuleSrcIp( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                        f.source.addr(), f.source.mask(), f.source.mask() != 0 );
   h.verifyIpRuleDstIp( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                        f.destination.addr(), f.destination.mask(), f.destination.mask() != 0 );
   h.verifyIpRuleDscp( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, f.dscp,
                       f.dscpValid );
   h.verifyIpRuleEcn( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, ecnData,
                      ecnMask );
   verifyRuleFieldsTail( f, check, subruleNum, tcpFlag );
   verifyIpFragRule( rule, check.ruleNum, check.l4Rule );
   if( !cd.policerData() ) {
      // With a policer, the action belongs to the policer.
      h.verifyIpRuleAction( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                            check.action );
   }
}

void QosClassMatchAclSm::verifyIp6RuleCommon( Acl::Ip6RuleConfig const& rule,
                                              RuleCheck const& check, std::uint32_t subruleNum,
                                              std::uint8_t tcpFlag, std::uint8_t ecnData,
                                              std::uint8_t ecnMask ) {
   auto const& f = rule.filter;
   auto& h = helper();
   auto const& cd = *classData();
   h.verifyIpRuleGeneral( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence );
   h.verifyIpRuleIpProto( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                          f.proto, f.proto != 0 );
   h.verifyIpRuleSrcIp6( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                         f.source, f.source.len() != 0 );
   h.verifyIpRuleDstIp6( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                         f.destination, f.destination.len() != 0 );
   h.verifyIpRuleTcIp6( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, f.dscp,
                        f.dscpValid );
   h.verifyIpRuleEcnIp6( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, ecnData,
                         ecnMask );
   verifyRuleFieldsTail( f, check, subruleNum, tcpFlag );
   if( !cd.policerData() ) {
      h.verifyIpRuleAction( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                            check.action );
   }
}

void QosClassMatchAclSm::verifyRuleFieldsTail( Acl::IpFilterBase const& filter,
                                               RuleCheck const& check, std::uint32_t subruleNum,
                                               std::uint8_t tcpFlag ) {
   auto& h = helper();
   auto const& cd = *classData();
   bool const headOnly = check.l4Rule && check.action == Acl::actionPermit;
   bool const fragmentsOnly = check.l4Rule ? false : filter.fragments;
   h.verifyIpRuleFragments( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                            headOnly, fragmentsOnly );
   h.verifyIpRuleTcpFlags( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                           tcpFlag, tcpFlag != 0 );
   h.verifyIpRuleVlanMatch( cd, key(), check.aclId, check.ruleNum, subruleNum, filter.vlan,
                            filter.vlanMask, filter.vlanMask != 0 );
}

void QosClassMatchAclSm::verifyIpFragRule( Acl::IpRuleConfig const& rule, std::uint32_t ruleNum,
                                           bool l4Rule ) {
   if( !l4Rule || rule.action != Acl::actionPermit ) return;
   auto const data = aclData();
   auto const map = data ? data->fragMap( rule.filter.proto ) : nullptr;
   AclFragInfo const info( rule.filter );
   if( map && ( map->info( info ) || map->info( AclFragInfo() ) ) ) {
      ZUB_TRACE( nevQosTrace, 8, "Matching fragment permit rule exists" );
      return;
   }
   // The compile records every fragment entry it makes: a gap is a broken invariant.
   ZUB_TRACE( nevQosTrace, 0,
              "ACL " << aclName() << " rule " << ruleNum << " " << info << " doesn't exist " );
   Zub::assertFail( "false", __FILE__, __LINE__, __func__ );
}

// A fragment entry has the rule's layer-3 match and nothing of layer 4.
void QosClassMatchAclSm::verifyIpFragEntry( Acl::IpRuleConfig const& rule, RuleCheck const& check,
                                            std::uint32_t subruleNum ) {
   auto const& f = rule.filter;
   auto& h = helper();
   auto const& cd = *classData();
   h.verifyIpRuleGeneral( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence );
   h.verifyIpRuleIpProto( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                          f.proto, f.proto != 0 );
   h.verifyIpRuleSrcIp( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                        f.source.addr(), f.source.mask(), f.source.mask() != 0 );
   h.verifyIpRuleDstIp( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                        f.destination.addr(), f.destination.mask(), f.destination.mask() != 0 );
   h.verifyIpRuleDscp( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, f.dscp,
                       f.dscpValid );
   verifyFragEntryTail( check, subruleNum );
}

void QosClassMatchAclSm::verifyIpFragEntry( Acl::Ip6RuleConfig const& rule, RuleCheck const& check,
                                            std::uint32_t subruleNum ) {
   auto const& f = rule.filter;
   auto& h = helper();
   auto const& cd = *classData();
   h.verifyIpRuleGeneral( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence );
   h.verifyIpRuleIpProto( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                          f.proto, f.proto != 0 );
   h.verifyIpRuleSrcIp6( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                         f.source, f.source.len() != 0 );
   h.verifyIpRuleDstIp6( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                         f.destination, f.destination.len() != 0 );
   h.verifyIpRuleTcIp6( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, f.dscp,
                        f.dscpValid );
   verifyFragEntryTail( check, subruleNum );
}

void QosClassMatchAclSm::verifyFragEntryTail( RuleCheck const& check, std::uint32_t subruleNum ) {
   auto& h = helper();
   auto const& cd = *classData();
   h.verifyIpRuleFragments( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                            false, true );
   h.verifyIpRuleTcpFlags( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, 0,
                           false );
   h.verifyIpRuleIcmp( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, 0, 0,
                       false, false );
   h.verifyIpRuleSrcPort( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, 0,
                          0xffff, false );
   h.verifyIpRuleDstPort( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, 0,
                          0xffff, false );
   if( !cd.policerData() ) {
      h.verifyIpRuleAction( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                            check.action );
   }
   h.verifyRulePorts( pmapState(), cd, matchOption(), key(), check.aclId, check.ruleNum, subruleNum,
                      check.sequence, check.action );
}

bool QosClassMatchAclSm::ownerPortAbsent() const {
   if( pmapSm()->pmapType() != Qos::mapControlPlane_ ) return false;
   std::string_view const owner = pmapSm()->pmapName().str().view();
   if( !owner.starts_with( "Ethernet" ) ) return false;
   Mirel::IntfId intfId;
   try {
      intfId = Mirel::IntfId( owner );
   } catch( Zub::ParseException const& ) {
      return false;  // a map named like a port but not one
   }
   auto const ncsd = qosAclSm()->ncsd();
   return !ncsd || !ncsd->intf( intfId );
}

}  // namespace Nev
