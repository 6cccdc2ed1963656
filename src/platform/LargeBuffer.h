#pragma once
// Buffers of many megabytes (a million data sets, their file's text) are filled once
// from start to end; most of that time went into the faults of first touching each
// small page. Asking for large pages before the first touch makes those faults rare.

#include <cstddef>

namespace orvane {

// A hint only: nothing happens for small buffers or where the system cannot do it.
void AdviseLargeBuffer(const void* data, size_t bytes);

// Reserves room for `count` elements in a vector or string and gives the hint for it,
// before anything is written there.
template <typename Container>
void ReserveLarge(Container& container, size_t count) {
  container.reserve(count);
  AdviseLargeBuffer(container.data(), container.capacity() * sizeof(*container.data()));
}

}  // namespace orvane
