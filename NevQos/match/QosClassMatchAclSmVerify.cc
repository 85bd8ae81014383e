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
#include "NevQos/platform/nev/AclFragMap.h"
#include "NevQos/platform/nev/AclIpRuleCreateData.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/Format.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

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
      // The deferred road keeps no per-rule state to replay: the helper checks the whole ACL, and
      // compares every entry it holds with what the engine's calls asked for.
      helper().verifyAclGeneral( *classData(), matchOption(), key() );
      helper().verifyTcamData( *classData(), matchOption(), key() );
      return;
   }
   reportIfDestroying();
   auto const rules = aclConfig()->currCfg();
   if( !initialized() || !rules || rulesIgnoredBesideOtherFamily() ) return;
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
      verifyRuleSubrules( rule, RuleCheck{ aclId, ruleNum, sequence, rule.action } );
   } else if( aclType() == Acl::ipv6() ) {
      Acl::Ip6RuleConfig rule = rules->ip6RuleById( aclId );
      detail::narrowTcpFlags( rule.filter, supported );
      verifyRuleSubrules( rule, RuleCheck{ aclId, ruleNum, sequence, rule.action } );
   } else {
      detail::unknownAclType();
   }
}

template< class Rule >
void QosClassMatchAclSm::verifyRuleSubrules( Rule const& rule, RuleCheck check ) {
   AclIpRuleCreateData_ data;
   createIpAclRuleData( rule.filter, data, helper().qosEcnSupport(),
                        helper().establishedSupported() );
   check.l4Rule = data.l4Rule;
   // The compile left the rule out: there is nothing to compare.
   check.leftOut =
         check.permit() && unsupportedIpRule( pmapState(), pmapSm()->pmapType(), rule.filter );
   check.portAbsent = check.permit() && ownerPortAbsent();
   check.chipTakenEnd = chipTakenEnd( check.ruleNum );
   std::uint32_t subruleNum = 0;
   for( auto ecn = data.ecnRules.ecnRules().iter(); ecn; ++ecn ) {
      for( unsigned s = 1; s <= data.srcPortCount; ++s ) {
         for( unsigned d = 1; d <= data.dstPortCount; ++d ) {
            for( unsigned t = 1; t <= data.tcpFlagCount; ++t ) {
               for( unsigned l = 1; l <= data.ipLenCount; ++l ) {
                  SubrulePlan const plan{ data.srcPortRange[ s ],
                                          data.dstPortRange[ d ],
                                          data.ipLenRange[ l ],
                                          data.srcPortMasks[ s ],
                                          data.dstPortMasks[ d ],
                                          data.ipLenMasks[ l ],
                                          data.tcpFlag[ t ],
                                          ecn.key(),
                                          ecn.value() };
                  verifySubrule( rule, check, plan, subruleNum );
               }
            }
         }
      }
   }
   if( !check.l4Rule || !check.permit() || check.leftOut || check.portAbsent ) return;
   if( check.chipLeftOut() ) return;
   // The entry after the last subrule, if any, lets the rule's non-first fragments through.
   if( helper().ipSubruleExists( *classData(), key(), check.aclId, check.ruleNum, subruleNum ) ) {
      verifyL3Fields( rule.filter, check, subruleNum );
      verifyFragEntryTail( check, subruleNum );
   }
}

template< class Rule >
void QosClassMatchAclSm::verifySubrule( Rule const& rule, RuleCheck const& check,
                                        SubrulePlan const& plan, std::uint32_t& subruleNum ) {
   char const* const name = aclName().charPtr();
   auto const sequence = static_cast< int >( check.sequence );
   auto const ruleNum = static_cast< int >( check.ruleNum );
   auto const subrule = static_cast< int >( subruleNum );
   bool const exists =
         helper().ipSubruleExists( *classData(), key(), check.aclId, check.ruleNum, subruleNum );
   if( !check.permit() ) {
      if( exists ) {
         NEV_VERIFY_FAILURE(
               verifyReport(),
               Zub::format( "ACL %s sequence %d rule %d subrule %d exist for action %d", name,
                            sequence, ruleNum, subrule, static_cast< int >( check.action ) ) );
      }
      ++subruleNum;
      return;
   }
   if( check.portAbsent ) {
      if( exists ) {
         NEV_VERIFY_FAILURE( verifyReport(),
                             Zub::format( "ACL %s sequence %d rule %d subrule %d should not exist",
                                          name, sequence, ruleNum, subrule ) );
      }
      return;
   }
   if( check.leftOut || subruleNum >= check.chipTakenEnd ) {
      ++subruleNum;
      return;
   }
   if( !exists ) {
      NEV_VERIFY_FAILURE( verifyReport(),
                          Zub::format( "ACL %s sequence %d rule %d subrule %d doesn't exist", name,
                                       sequence, ruleNum, subrule ) );
   }
   auto const common = [ & ]( std::uint32_t n ) {
      if constexpr( std::is_same_v< Rule, Acl::IpRuleConfig > ) {
         verifyIpRuleCommon( rule, check, n, plan.tcpFlag, plan.ecnData, plan.ecnMask );
      } else {
         verifyIp6RuleCommon( rule, check, n, plan.tcpFlag, plan.ecnData, plan.ecnMask );
      }
   };
   auto const layer4 = [ & ]( std::uint32_t n, PortRange src, PortRange dst ) {
      auto const& filter = rule.filter;
      if( filter.proto != 1 ) {
         verifyPorts( check, n, src, dst );
      } else {
         helper().verifyIpRuleIcmp( *classData(), key(), check.aclId, check.ruleNum, n,
                                    check.sequence, filter.icmpType, filter.icmpCode,
                                    filter.icmpTypeValid, filter.icmpCodeValid );
      }
   };
   bool const portsWhole = helper().ipPortRangeSubruleExists(
         *classData(), key(), check.aclId, check.ruleNum, subruleNum, plan.src.first,
         plan.src.second, !fullRange( plan.src.first, plan.src.second ), plan.dst.first,
         plan.dst.second, !fullRange( plan.dst.first, plan.dst.second ) );
   bool const lenWhole = lenRangeWhole( check, plan, subruleNum );
   if( portsWhole && lenWhole ) {
      common( subruleNum );
      layer4( subruleNum, plan.src, plan.dst );
      ++subruleNum;
      return;
   }
   // Expanded: one entry per combination of blocks, ports outermost, as the compile retried. A
   // dimension held whole counts as its one range.
   auto const blocksOf = []( bool whole, PortRange range, Blocks const& masks ) {
      if( !whole ) return masks;
      return Blocks{ { range.first, range.second, 0 } };
   };
   Blocks const srcBlocks = blocksOf( portsWhole, plan.src, plan.srcMasks );
   Blocks const dstBlocks = blocksOf( portsWhole, plan.dst, plan.dstMasks );
   std::size_t const lenBlocks = lenWhole ? 1 : plan.lenMasks.size();
   for( auto const& src : srcBlocks ) {
      for( auto const& dst : dstBlocks ) {
         for( std::size_t l = 0; l < lenBlocks; ++l ) {
            if( subruleNum >= check.chipTakenEnd ) return;  // the chip took no more blocks
            common( subruleNum );
            layer4( subruleNum, { src.value, src.high }, { dst.value, dst.high } );
            ++subruleNum;
         }
      }
   }
}

// A range of one block is never expanded: the chip is asked only about one of several blocks.
bool QosClassMatchAclSm::lenRangeWhole( RuleCheck const& check, SubrulePlan const& plan,
                                        std::uint32_t subruleNum ) {
   if( plan.lenMasks.size() < 2 ) return true;
   return helper().ipLenRangeSubruleExists( *classData(), key(), check.aclId, check.ruleNum,
                                            subruleNum, plan.len.first, plan.len.second,
                                            !fullRange( plan.len.first, plan.len.second ) );
}

void QosClassMatchAclSm::verifyIpRuleCommon( Acl::IpRuleConfig const& rule, RuleCheck const& check,
                                             std::uint32_t subruleNum, std::uint8_t tcpFlag,
                                             std::uint8_t ecnData, std::uint8_t ecnMask ) {
   verifyL3Fields( rule.filter, check, subruleNum );
   helper().verifyIpRuleEcn( *classData(), key(), check.aclId, check.ruleNum, subruleNum,
                             check.sequence, ecnData, ecnMask );
   verifyRuleFieldsTail( rule.filter, check, subruleNum, tcpFlag );
   // A rule the chip left out never reached its fragment entry.
   if( !check.chipLeftOut() ) verifyIpFragRule( rule, check.ruleNum, check.l4Rule );
   verifyAction( check, subruleNum );
}

void QosClassMatchAclSm::verifyIp6RuleCommon( Acl::Ip6RuleConfig const& rule,
                                              RuleCheck const& check, std::uint32_t subruleNum,
                                              std::uint8_t tcpFlag, std::uint8_t ecnData,
                                              std::uint8_t ecnMask ) {
   verifyL3Fields( rule.filter, check, subruleNum );
   helper().verifyIpRuleEcnIp6( *classData(), key(), check.aclId, check.ruleNum, subruleNum,
                                check.sequence, ecnData, ecnMask );
   verifyRuleFieldsTail( rule.filter, check, subruleNum, tcpFlag );
   verifyAction( check, subruleNum );
}

void QosClassMatchAclSm::verifyL3Fields( Acl::IpFilter const& f, RuleCheck const& check,
                                         std::uint32_t subruleNum ) {
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
}

void QosClassMatchAclSm::verifyL3Fields( Acl::Ip6Filter const& f, RuleCheck const& check,
                                         std::uint32_t subruleNum ) {
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
}

// A range over every port is no condition.
void QosClassMatchAclSm::verifyPorts( RuleCheck const& check, std::uint32_t subruleNum,
                                      PortRange src, PortRange dst ) {
   auto& h = helper();
   h.verifyIpRuleSrcPort( *classData(), key(), check.aclId, check.ruleNum, subruleNum,
                          check.sequence, src.first, src.second,
                          !fullRange( src.first, src.second ) );
   h.verifyIpRuleDstPort( *classData(), key(), check.aclId, check.ruleNum, subruleNum,
                          check.sequence, dst.first, dst.second,
                          !fullRange( dst.first, dst.second ) );
}

// With a policer, the action belongs to the policer.
void QosClassMatchAclSm::verifyAction( RuleCheck const& check, std::uint32_t subruleNum ) {
   if( classData()->policerData() ) return;
   helper().verifyIpRuleAction( *classData(), key(), check.aclId, check.ruleNum, subruleNum,
                                check.sequence, check.action );
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
void QosClassMatchAclSm::verifyFragEntryTail( RuleCheck const& check, std::uint32_t subruleNum ) {
   auto& h = helper();
   auto const& cd = *classData();
   h.verifyIpRuleFragments( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence,
                            false, true );
   h.verifyIpRuleTcpFlags( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, 0,
                           false );
   h.verifyIpRuleIcmp( cd, key(), check.aclId, check.ruleNum, subruleNum, check.sequence, 0, 0,
                       false, false );
   verifyPorts( check, subruleNum, { 0, 0xffff }, { 0, 0xffff } );
   verifyAction( check, subruleNum );
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
