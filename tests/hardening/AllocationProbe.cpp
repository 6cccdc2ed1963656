#include "hardening/AllocationProbe.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<size_t> largest{0};
std::atomic<size_t> held{0}, peak{0}, heldAtReset{0};

void raise(std::atomic<size_t>& mark, size_t value) {
  size_t seen = mark.load(std::memory_order_relaxed);
  while (value > seen && !mark.compare_exchange_weak(seen, value, std::memory_order_relaxed)) {
  }
}

void* tryAllocate(size_t size) noexcept {
  raise(largest, size);
  void* p = std::malloc(size ? size : 1);
  if (p) raise(peak, held.fetch_add(malloc_usable_size(p), std::memory_order_relaxed) + malloc_usable_size(p));
  return p;
}

void* allocate(size_t size) {
  if (void* p = tryAllocate(size)) return p;
  throw std::bad_alloc();
}

void release(void* p) {
  if (!p) return;
  held.fetch_sub(malloc_usable_size(p), std::memory_order_relaxed);
  std::free(p);
}

}  // namespace

namespace orvane::test {
void resetLargestAllocation() {
  largest.store(0);
  heldAtReset.store(held.load());
  peak.store(held.load());
}
size_t largestAllocation() { return largest.load(); }
size_t peakAllocated() { return peak.load() - heldAtReset.load(); }
}  // namespace orvane::test

// Every form of the plain operators, so that all memory they hand out comes from malloc
// and goes back to free.
void* operator new(size_t size) { return allocate(size); }
void* operator new[](size_t size) { return allocate(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return tryAllocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return tryAllocate(size); }
void operator delete(void* p) noexcept { release(p); }
void operator delete[](void* p) noexcept { release(p); }
void operator delete(void* p, size_t) noexcept { release(p); }
void operator delete[](void* p, size_t) noexcept { release(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { release(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { release(p); }
