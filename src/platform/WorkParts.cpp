#include "platform/WorkParts.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <thread>
#include <vector>

namespace orvane {

void RunParts(int count, const std::function<void(int)>& part) {
  std::vector<std::exception_ptr> failures(static_cast<size_t>(std::max(count, 0)));
  const auto run = [&](int k) {
    try {
      part(k);
    } catch (...) {
      failures[static_cast<size_t>(k)] = std::current_exception();
    }
  };
  std::vector<std::thread> others;
  for (int k = 1; k < count; ++k) {
    try {
      others.emplace_back(run, k);
    } catch (const std::system_error&) {  // no thread to be had: this one does the part
      run(k);
    }
  }
  if (count > 0) run(0);
  for (std::thread& t : others) t.join();
  for (const std::exception_ptr& failure : failures)
    if (failure) std::rethrow_exception(failure);
}

int WorkPartCount() { return std::max(1u, std::thread::hardware_concurrency()); }

}  // namespace orvane
