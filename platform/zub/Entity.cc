#include "zub/Entity.h"

namespace Zub {

String Entity::fullName() const {
   if( !parent_ ) return name_;
   return parent_->fullName() + "/" + parentAttrName_.str() + "/" + name_;
}

}  // namespace Zub
