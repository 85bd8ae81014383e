// What the runtime's free lists hold, for measurements of the heap.
#pragma once

#include <cstddef>

namespace Zub::Pool {

// What this thread's lists hold: the blocks handed out and not given back, their bytes (each
// block counted at its class's size), and the bytes of the chunks carved, in use or free. A
// measure of the heap counts the chunks as the general allocator's and puts the blocks in use in
// their place.
struct Usage {
   std::size_t blocks = 0;
   std::size_t blockBytes = 0;
   std::size_t chunkBytes = 0;
};
Usage usage();

}  // namespace Zub::Pool
