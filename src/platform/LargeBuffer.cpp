#include "platform/LargeBuffer.h"

#include <sys/mman.h>

#include <cstdint>

namespace orvane {

void AdviseLargeBuffer(const void* data, size_t bytes) {
  constexpr size_t kWorthIt = size_t{8} << 20;
  constexpr uintptr_t kPage = 4096;
  if (bytes < kWorthIt) return;
  const auto first = (reinterpret_cast<uintptr_t>(data) + kPage - 1) & ~(kPage - 1);
  const auto end = (reinterpret_cast<uintptr_t>(data) + bytes) & ~(kPage - 1);
#ifdef MADV_HUGEPAGE
  if (end > first) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#endif
}

}  // namespace orvane
