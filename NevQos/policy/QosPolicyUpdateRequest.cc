#include "NevQos/policy/QosPolicyUpdateRequest.h"

#include <ostream>

namespace Nev {

namespace {

constexpr ValueText::Member qosPolicyUpdateReasonNames[] = {
   { updateReasonPolicyChange, "updateReasonPolicyChange" },
   { updateReasonConfigVersionUpdateTime, "updateReasonConfigVersionUpdateTime" },
   { updateReasonAclChange, "updateReasonAclChange" },
   { updateReasonIntfChange, "updateReasonIntfChange" },
};

}  // namespace

ENUM_TEXT_DEFINE( QosPolicyUpdateReason, "Nev::QosPolicyUpdateReason", qosPolicyUpdateReasonNames )

QosPolicyUpdateRequest::QosPolicyUpdateRequest( char const* begin, char const* end )
    : QosPolicyUpdateRequest() {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

std::strong_ordering QosPolicyUpdateRequest::operator<=>(
      QosPolicyUpdateRequest const& o ) const noexcept {
   if( auto c = ValueText::compareEnum( reasonType_, o.reasonType_ ); c != 0 ) return c;
   if( auto c = reasonKey_ <=> o.reasonKey_; c != 0 ) return c;
   if( auto c = remove_ <=> o.remove_; c != 0 ) return c;
   if( auto c = policyData_ <=> o.policyData_; c != 0 ) return c;
   if( auto c = pmapKey_ <=> o.pmapKey_; c != 0 ) return c;
   if( auto c = intfPair_ <=> o.intfPair_; c != 0 ) return c;
   if( auto c = aclKey_ <=> o.aclKey_; c != 0 ) return c;
   return ValueText::compareEnum( matchOption_, o.matchOption_ );
}

Zub::String valueToStrep( QosPolicyUpdateRequest const& r ) {
   return Zub::String( "Value('Nev::QosPolicyUpdateRequest', ** {'reasonType': " ) +
          valueToStrep( r.reasonType() ) + ", 'reasonKey': " + Zub::valueToStrep( r.reasonKey() ) +
          ", 'remove': " + Zub::valueToStrep( r.remove() ) +
          ", 'policyData': " + Zub::valueToStrep( r.policyData() ) +
          ", 'pmapKey': " + valueToStrep( r.pmapKey() ) +
          ", 'intfPair': " + valueToStrep( r.intfPair() ) + "})";
}

std::ostream& operator<<( std::ostream& os, QosPolicyUpdateRequest const& r ) {
   return os << valueToStrep( r );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, QosPolicyUpdateRequest& out ) {
   QosPolicyUpdateReason reasonType = updateReasonPolicyChange;
   Zub::String reasonKey;
   bool remove = false;
   Zub::Ptr< QosPolicyMapClassData > policyData;
   QosPolicyMapKey pmapKey;
   Qos::IntfPairKey intfPair;
   Zub::needString( it, end, "Value('Nev::QosPolicyUpdateRequest', ** {" );
   Zub::deserializeField( it, end, "reasonType", reasonType, true );
   Zub::deserializeField( it, end, "reasonKey", reasonKey, false );
   Zub::deserializeField( it, end, "remove", remove, false );
   Zub::deserializeField( it, end, "policyData", policyData, false );
   Zub::deserializeField( it, end, "pmapKey", pmapKey, false );
   Zub::deserializeField( it, end, "intfPair", intfPair, false );
   Zub::needString( it, end, "})" );
   out = QosPolicyUpdateRequest( reasonType, reasonKey, remove );
   out.policyDataIs( policyData );
   out.pmapKeyIs( pmapKey );
   out.intfPairIs( intfPair );
}

}  // namespace Nev
