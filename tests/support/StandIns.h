// Arguments for helper operations whose records tests cannot build yet: the class data and the
// ACL rule records are only declared so far. The helper's default bodies and the recording
// helper never look inside them, so a reference to untouched storage is enough to make the call.
// Replace each use by a real record once its type is defined.
#pragma once

#include <cstddef>

namespace NevQosTest {

template< class T >
T const& standIn() {
   alignas( std::max_align_t ) static unsigned char storage[ 256 ];
   return *reinterpret_cast< T const* >( storage );
}

}  // namespace NevQosTest
