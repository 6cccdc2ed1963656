#include "hardening/AllocationProbe.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<size_t> largest{0};

void* allocate(size_t size) {
  size_t seen = largest.load(std::memory_order_relaxed);
  while (size > seen && !largest.compare_exchange_weak(seen, size, std::memory_order_relaxed)) {
  }
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}

}  // namespace

namespace orvane::test {
void resetLargestAllocation() { largest.store(0); }
size_t largestAllocation() { return largest.load(); }
}  // namespace orvane::test

// Every form of the plain operators, so that all memory they hand out comes from malloc
// and goes back to free.
void* operator new(size_t size) { return allocate(size); }
void* operator new[](size_t size) { return allocate(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  try {
    return allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void* operator new[](size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, size_t) noexcept { std::free(p); }
void operator delete[](void* p, size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }
