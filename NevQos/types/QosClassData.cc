#include "NevQos/types/QosClassData.h"

namespace Nev {

void QosClassData::policerNameIs( Zub::Name const& name ) {
   if( !ownFlag( renamedFlag ) ) {
      // The record is named after its first key. The engine creates it under the placeholder,
      // which a mark remembers; a record created under another policer is named now.
      if( key_.policerName() != Key::defaultPolicerName() ) static_cast< void >( this->name() );
      ownFlagIs( renamedFlag, true );
   }
   key_ = Key( key_.pmapKey(), key_.cmapName(), key_.cmapType(), name );
}

Zub::String QosClassData::nameFromKey() const {
   Zub::Name const& created =
         ownFlag( renamedFlag ) ? Key::defaultPolicerName() : key_.policerName();
   return Zub::entityNameOf( Key( key_.pmapKey(), key_.cmapName(), key_.cmapType(), created ) );
}

}  // namespace Nev
