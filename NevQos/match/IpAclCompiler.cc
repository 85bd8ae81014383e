#include "NevQos/match/IpAclCompiler.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Log.h"

namespace Nev {

namespace {

using Entry = AclIpRuleCreateData_::Entry;

// One side of a subrule call: a port or an IP length as value and mask, and as a range.
struct Field {
   std::uint16_t value = 0;
   std::uint16_t mask = 0;
   std::uint16_t low = 0;
   std::uint16_t high = 0;
};

// A range that fits one block goes as value and mask; one that does not goes with mask 0 and
// needs a range checker.
Field fieldOf( AclIpRuleCreateData_::Range const& range, std::vector< Entry > const& masks ) {
   std::uint16_t const mask0 = !masks.empty() && masks.size() < 2 ? masks.front().mask : 0;
   return Field{ range.first, mask0, range.first, range.second };
}

Field fieldOf( Entry const& e ) {
   return Field{ e.value, e.mask, e.value, e.high };
}

struct SubruleCall {
   IpRuleTarget const& target;
   Acl::RuleConfig const& rule;
   Acl::AclType aclType;
   bool l4Rule;
   std::uint8_t tcpFlags;
   std::uint8_t ecnData;
   std::uint8_t ecnMask;

   AclCreateError operator()( Field const& src, Field const& dst, Field const& len,
                              std::uint32_t subruleNum ) const {
      return target.helper.createIpAclSubrule(
            aclType, rule, target.aclId, target.pmapState, target.classData, target.aclKey,
            target.ruleNum, subruleNum, src.value, src.mask, dst.value, dst.mask, src.low, src.high,
            dst.low, dst.high, len.value, len.mask, len.low, len.high, tcpFlags, l4Rule, ecnData,
            ecnMask );
   }
};

bool retryCode( AclCreateError error, Acl::AclType aclType ) {
   switch( error ) {
      case aclCreateErrorTooManyL4PortRanges:
      case aclCreateErrorExpandSrc:
      case aclCreateErrorExpandDst:
         return true;
      case aclCreateErrorExpandIpLen:
      case aclCreateErrorExpandAll:
      case aclCreateErrorExpandSrcIpLen:
      case aclCreateErrorExpandDstIpLen:
         // IP length ranges are never expanded for IPv6.
         return aclType == Acl::ip();
      default:
         return false;
   }
}

bool expandsSrc( AclCreateError e ) {
   return e == aclCreateErrorTooManyL4PortRanges || e == aclCreateErrorExpandAll ||
          e == aclCreateErrorExpandSrcIpLen || e == aclCreateErrorExpandSrc;
}

bool expandsDst( AclCreateError e ) {
   return e == aclCreateErrorTooManyL4PortRanges || e == aclCreateErrorExpandAll ||
          e == aclCreateErrorExpandDstIpLen || e == aclCreateErrorExpandDst;
}

bool expandsLen( AclCreateError e ) {
   return e == aclCreateErrorExpandIpLen || e == aclCreateErrorExpandAll ||
          e == aclCreateErrorExpandSrcIpLen || e == aclCreateErrorExpandDstIpLen;
}

// The fields a dimension takes in the retry: its blocks, or the field of the failed call alone.
std::vector< Field > retryFields( bool expand, Field const& kept,
                                  std::vector< Entry > const& masks ) {
   std::vector< Field > out;
   if( !expand ) {
      out.push_back( kept );
      return out;
   }
   out.reserve( masks.size() );
   for( Entry const& e : masks )
      out.push_back( fieldOf( e ) );
   return out;
}

// Replaces one refused subrule by the product of the blocks the code names, source outermost;
// the first of them takes the refused subrule's number. No second retry.
AclCreateError expandSubrule( SubruleCall const& call, AclCreateError code, Field const& src,
                              Field const& dst, Field const& len,
                              std::vector< Entry > const& srcMasks,
                              std::vector< Entry > const& dstMasks,
                              std::vector< Entry > const& lenMasks, std::uint32_t& subruleNum ) {
   auto const srcs = retryFields( expandsSrc( code ), src, srcMasks );
   auto const dsts = retryFields( expandsDst( code ), dst, dstMasks );
   auto const lens = retryFields( expandsLen( code ), len, lenMasks );
   for( Field const& s : srcs ) {
      for( Field const& d : dsts ) {
         for( Field const& l : lens ) {
            AclCreateError const error = call( s, d, l, subruleNum );
            if( error != aclCreateErrorNone ) return error;
            ++subruleNum;
         }
      }
   }
   return aclCreateErrorNone;
}

}  // namespace

AclCreateError createIpSubrules( IpRuleTarget const& target, Acl::RuleConfig const& rule,
                                 Acl::AclType aclType, AclIpRuleCreateData_ const& data,
                                 IpRuleAnswers answers, std::uint32_t& subruleNum ) {
   for( auto ecn = data.ecnRules.ecnRules().iter(); ecn; ++ecn ) {
      for( unsigned s = 1; s <= data.srcPortCount; ++s ) {
         Field const src = fieldOf( data.srcPortRange[ s ], data.srcPortMasks[ s ] );
         for( unsigned d = 1; d <= data.dstPortCount; ++d ) {
            Field const dst = fieldOf( data.dstPortRange[ d ], data.dstPortMasks[ d ] );
            for( unsigned t = 1; t <= data.tcpFlagCount; ++t ) {
               SubruleCall const call{
                  target, rule, aclType, data.l4Rule, data.tcpFlag[ t ], ecn.key(), ecn.value()
               };
               for( unsigned l = 1; l <= data.ipLenCount; ++l ) {
                  Field const len = fieldOf( data.ipLenRange[ l ], data.ipLenMasks[ l ] );
                  AclCreateError error = call( src, dst, len, subruleNum );
                  if( answers == IpRuleAnswers::mustSucceed ) {
                     ZUB_ASSERT_TEXT( error == aclCreateErrorNone,
                                      "error == aclCreateErrorNone()" );
                  }
                  if( error == aclCreateErrorNone ) {
                     ++subruleNum;
                     continue;
                  }
                  if( !retryCode( error, aclType ) ) return error;
                  error = expandSubrule( call, error, src, dst, len, data.srcPortMasks[ s ],
                                         data.dstPortMasks[ d ], data.ipLenMasks[ l ], subruleNum );
                  if( error != aclCreateErrorNone ) return error;
               }
            }
         }
      }
   }
   return aclCreateErrorNone;
}

AclCreateError planIpSubrules( IpRuleTarget const& target, Acl::RuleConfig const& rule,
                               Acl::IpFilterBase const& filter, Acl::AclType aclType,
                               IpRuleAnswers answers, std::uint32_t& subruleNum, bool& l4Rule ) {
   AclIpRuleCreateData_ data;
   createIpAclRuleData( filter, data, target.helper.qosEcnSupport(),
                        target.helper.establishedSupported() );
   l4Rule = data.l4Rule;
   return createIpSubrules( target, rule, aclType, data, answers, subruleNum );
}

AclCreateError createIpFragEntries( IpRuleTarget const& target, Acl::IpRuleConfig const& rule,
                                    AclData& aclData, bool qosEcnSupport, std::uint32_t subRuleNum,
                                    bool l4Rule ) {
   Acl::IpFilter const& filter = rule.filter;
   AclFragInfo const info( filter );
   if( filter.fragments ) {
      // An explicit fragments rule is the entry of its layer-3 match in the maps that exist.
      if( l4Rule ) return aclCreateErrorNone;
      for( auto it = aclData.fragMap().iter(); it; ++it ) {
         if( filter.proto != 0 && it.key() != filter.proto ) continue;
         ZUB_TRACE( nevQosTrace, 8, "fragMap(" << unsigned( it.key() ) << "): insert " << info );
         it.value()->infoIs( info, true );
      }
      return aclCreateErrorNone;
   }
   if( !l4Rule ) return aclCreateErrorNone;
   Zub::Ptr< AclFragMap > map = aclData.fragMap( filter.proto );
   // A rule with a VLAN match always makes its own entry.
   if( filter.vlanMask == 0 && map && ( map->info( info ) || map->info( AclFragInfo() ) ) ) {
      ZUB_TRACE( nevQosTrace, 8, "Matching fragment permit rule already created" );
      return aclCreateErrorNone;
   }
   ZUB_TRACE( nevQosTrace, 8, "Creating fragment permit rule" );
   if( !map ) map = aclData.fragMapIs( filter.proto );
   AclEcnInfo const ecnInfo = AclEcnInfo::of( filter.ecn, qosEcnSupport );
   for( auto ecn = ecnInfo.ecnRules().iter(); ecn; ++ecn ) {
      AclCreateError const error = target.helper.createIpFragRule(
            target.pmapState, target.classData, target.aclKey, rule, target.aclId, target.ruleNum,
            subRuleNum, ecn.key(), ecn.value() );
      if( error != aclCreateErrorNone ) return error;
      ++subRuleNum;
   }
   map->infoIs( info, true );
   return aclCreateErrorNone;
}

void reportAclRuleWalk( AclRuleWalk const& walk, Acl::AclType aclType, Zub::Name const& aclName,
                        Zub::Name const& cmapName ) {
   if( walk.tcpFlagsDropped ) {
      // The rule stays programmed, with fewer conditions than configured.
      ZUB_TRACE( nevQosTrace, 3,
                 " Unsupported tcpFlag in rule with AclType " << aclType << " aclName " << aclName
                                                              << " ruleNum " << walk.ruleNum );
      Zub::log( QOS_PMAP_FIELD_NOT_SUPPORTED, "Tcp Flags", aclName, cmapName, "Tcp Flags",
                "Tcp Flags" );
   }
   if( walk.ruleIgnored ) Zub::log( QOS_VLAN_ACL_RULE_SVI_MISMATCH, aclName, cmapName );
}

bool unsupportedIpRule( QosPolicyMapState const& pmapState, Qos::MapType pmapType,
                        Acl::IpFilterBase const& filter ) {
   if( pmapType != Qos::mapQos_ || filter.vlanMask == 0 ) return false;
   for( auto it = pmapState.activeIntf().iter(); it; ++it ) {
      if( it.key().intfId().isVlan() ) return true;
   }
   return false;
}

namespace detail {

bool narrowTcpFlags( Acl::IpFilterBase& filter, std::uint32_t supportedTcpFlags ) {
   std::uint32_t const kept = filter.tcpFlag.value() & supportedTcpFlags;
   if( kept == filter.tcpFlag.value() ) return false;
   filter.tcpFlag = Acl::TcpFlag( kept );
   return true;
}

void unknownAclType() {
   ZUB_ASSERT_TEXT( false, "aclType == Acl::ip() || aclType == Acl::ipv6()" );
   __builtin_unreachable();
}

}  // namespace detail

}  // namespace Nev
