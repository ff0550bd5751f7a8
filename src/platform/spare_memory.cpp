#include "platform/spare_memory.h"

#include <sys/mman.h>

#include <cstddef>
#include <new>

namespace brisklet {

void requireSpareMemory() {
  // The largest font file, of which libraries map the whole, has 20 MB.
  constexpr std::size_t spareBytes = 64 << 20;
  // Addresses are what a limit counts; nothing is written to them.
  void* const spare =
      mmap(nullptr, spareBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (spare == MAP_FAILED) throw std::bad_alloc();
  munmap(spare, spareBytes);
}

}  // namespace brisklet
