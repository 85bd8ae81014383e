#include "zub/Entity.h"

namespace Zub {

String Entity::fullName() const {
   if( !parent_ ) return name();
   return parent_->fullName() + "/" + String( parentAttrName_ ? parentAttrName_ : "" ) + "/" +
          name();
}

}  // namespace Zub
