#pragma once
// Bulk work that touches no window (reading and writing a large file's text) spread over
// the machine's cores: the parts run at the same time and have all ended when the call
// returns, so the caller sees what one thread doing them in order would have made.

#include <functional>

namespace orvane {

// Runs part(0) .. part(count - 1), part 0 on this thread and each other on a thread of
// its own (kept from one call to the next), and returns once all have ended. An
// exception from a part is thrown here then, the lowest part's when several failed.
void RunParts(int count, const std::function<void(int)>& part);

// How many parts large work is worth splitting into: the cores there are, at least 1.
int WorkPartCount();

}  // namespace orvane
