#include "NevQos/platform/zub/Ptr.h"

namespace Zub {

bool threadSafePointers = false;

void PtrInterface::delRef() const {
   std::uint32_t left;
   if( threadSafePointers ) {
      left = std::atomic_ref< std::uint32_t >( refCount_ )
                   .fetch_sub( 1, std::memory_order_acq_rel ) -
             1;
   } else {
      left = --refCount_;
   }
   if( left == 0 ) handleZeroRef();
}

void PtrInterface::ownFlagIs( std::uint32_t bit, bool on ) const {
   auto word = static_cast< std::uint32_t >( flags_ );
   bit &= ownFlagBits;
   word = on ? ( word | bit ) : ( word & ~bit );
   flags_ = static_cast< std::int32_t >( word );
}

void PtrInterface::ownFieldIs( std::uint32_t value ) const {
   std::uint32_t const mask = ownFieldLimit << ownFieldShift;
   auto const word = static_cast< std::uint32_t >( flags_ );
   flags_ = static_cast< std::int32_t >( ( word & ~mask ) |
                                         ( ( value & ownFieldLimit ) << ownFieldShift ) );
}

void PtrInterface::zombieIs( bool z ) {
   if( z ) {
      flags_ = static_cast< std::int32_t >( static_cast< std::uint32_t >( flags_ ) | 0x80000000u );
   } else {
      flags_ = static_cast< std::int32_t >( static_cast< std::uint32_t >( flags_ ) & 0x7fffffffu );
   }
}

void PtrInterface::handleZeroRef() const noexcept {
   delete this;
}

}  // namespace Zub
