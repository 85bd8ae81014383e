#include "zub/Entity.h"

namespace Zub {

String Entity::fullName() const {
   if( !parent_ ) return name();
   return parent_->fullName() + "/" + parentAttrName_.str() + "/" + name();
}

}  // namespace Zub
