#include "NevQos/match/QosClassMatchOptionSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/match/MatchOptionCompiler.h"
#include "NevQos/match/QosClassMatchSm.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosClassMatchOptionSm::QosClassMatchOptionSm( AclKey const& key, QosClassMatchSm* classMatchSm,
                                              Qos::ClassMapMatchOption matchOption,
                                              QosPMapAclTypes pmapAclTypes )
    : QosClassMatchChildSm( key, classMatchSm, matchOption ), pmapAclTypes_( pmapAclTypes ) {
   handleInitialized();
}

Zub::String QosClassMatchOptionSm::createAclName( NevHelper::QosAclHelper const& helper,
                                                  Acl::AclType aclType,
                                                  Qos::ClassMapMatchOption matchOpt,
                                                  std::uint32_t matchPrio ) {
   return helper.createAclName( aclType, matchOpt, matchPrio );
}

bool QosClassMatchOptionSm::createAcl() {
   auto const data = aclData();
   if( !data->dirty() && data->installed() ) return true;
   if( destroying() ) return true;
   data->aclNumberIs( optionAclNumber() );
   MatchOptionTarget const target{
      *qosAclSm(), *pmapSm(), classData(), key(), matchOption(), data
   };
   auto const& classMatch = classMatchSm()->classMatch();
   rulesIgnoredBesideOtherFamilyIs( matchOption() == Qos::matchOptionMac &&
                                    macRulesIgnoredBesideIpv6( target ) );
   // A match the chip cannot classify on programs nothing, and the ACL counts as standing.
   if( !chipClassifies() ) return true;
   switch( matchOption() ) {
      case Qos::matchOptionVlan:
      case Qos::matchOptionCos:
      case Qos::matchOptionVlanCos:
         return createClassMatchL2ParamsAcl( target, classMatch );
      case Qos::matchOptionDscpEcn:
         return createClassMatchDscpEcnAcl( target, classMatch );
      case Qos::matchOptionMac:
         return createClassMatchMacAcl( target, classMatch );
      case Qos::matchOptionBuiltIn:
         return createBuiltInClassMatchAcl( target, classMatch );
      default:
         // The other options have machines of their own.
         ZUB_ASSERT( false );
         return true;
   }
}

bool QosClassMatchOptionSm::chipClassifies() const {
   auto const hw = qosAclSm()->qosAclHwStatus();
   switch( matchOption() ) {
      case Qos::matchOptionVlan:
         return hw->vlanClassMatchSupported();
      case Qos::matchOptionCos:
         return hw->cosClassMatchSupported();
      case Qos::matchOptionVlanCos:
         return hw->vlanClassMatchSupported() && hw->cosClassMatchSupported();
      case Qos::matchOptionDscpEcn:
         return hw->dscpEcnClassMatchSupported();
      default:
         return true;
   }
}

bool QosClassMatchOptionSm::cleanupAfterDestroy() const {
   return classMatchSm()->allMatchOptionSmDestroying();
}

void QosClassMatchOptionSm::showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) {
   QosClassMatchChildSm::showAcl( socket, unit, detail );
   if( !detail ) return;
   switch( matchOption() ) {
      case Qos::matchOptionVlan:
      case Qos::matchOptionCos:
      case Qos::matchOptionVlanCos:
         helper().showL2ParamsRule( socket, unit, pmapState(), *classData(), matchOption(), key() );
         break;
      case Qos::matchOptionDscpEcn:
         helper().showDscpEcnRule( socket, unit, pmapState(), *classData(), matchOption(), key() );
         break;
      case Qos::matchOptionMac:
         helper().showMacAclRule( socket, unit, pmapState(), *classData(), matchOption(), key() );
         break;
      default:
         break;  // a built-in class has its header only
   }
}

void QosClassMatchOptionSm::handleVerify() {
   if( helper().asyncTcamOperationsSupported() ) {
      helper().verifyTcamData( *classData(), matchOption(), key() );
      return;
   }
   reportIfDestroying();
   if( !chipClassifies() || rulesIgnoredBesideOtherFamily() ) return;  // nothing was programmed
   switch( matchOption() ) {
      case Qos::matchOptionVlan:
      case Qos::matchOptionCos:
      case Qos::matchOptionVlanCos:
         helper().verifyL2ParamsRule( pmapState(), *classData(), matchOption(), key() );
         break;
      case Qos::matchOptionDscpEcn:
         helper().verifyDscpEcnRule( pmapState(), *classData(), matchOption(), key() );
         break;
      case Qos::matchOptionMac: {
         MatchOptionTarget const target{ *qosAclSm(), *pmapSm(),     classData(),
                                         key(),       matchOption(), aclData() };
         // A list whose rules the chip all refused holds no rule to compare.
         if( macListTakesARule( target ) ) {
            helper().verifyMacAclRule( pmapState(), *classData(), matchOption(), key() );
         }
         break;
      }
      default:
         break;  // a built-in class has no rule of its own to compare
   }
}

}  // namespace Nev
