#include "zub/Entity.h"

namespace Zub {

String Entity::fullName() const {
   if( !parent_ ) return name();
   return parent_->fullName() + "/" + parentAttrName().str() + "/" + name();
}

}  // namespace Zub
