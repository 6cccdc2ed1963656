#include "platform/WorkParts.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace orvane {

namespace {

// Waits awake for `ready` a little while, as a split often follows the last one closely
// (a scan's next run of points) and a sleeping thread takes long to wake; true when it
// came in that time.
template <class Ready>
bool awaitAwake(Ready ready, std::chrono::microseconds patience) {
  const auto until = std::chrono::steady_clock::now() + patience;
  for (int spins = 0;; ++spins) {
    if (ready()) return true;
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
    if (spins % 64 == 63 && std::chrono::steady_clock::now() >= until) return false;
  }
}

// Threads kept between calls for the parts beyond the first: work split many times in a
// row would otherwise pay for starting and ending a thread at each split.
class KeptThreads {
 public:
  static KeptThreads& instance() {
    static KeptThreads threads;
    return threads;
  }

  ~KeptThreads() {
    {
      std::lock_guard lock(mutex_);
      ending_ = true;
    }
    wake_.notify_all();
    for (std::thread& t : threads_) t.join();
  }

  // Runs part(1) .. part(count - 1) on the kept threads and part(0) here; false, with
  // nothing run, when they are taken (a part splitting its own work, another thread's
  // split) or no thread can be started.
  bool run(int count, const std::function<void(int)>& part) {
    std::unique_lock taken(taken_, std::try_to_lock);
    if (!taken.owns_lock() || !keep(count - 1)) return false;
    {
      std::lock_guard lock(mutex_);
      part_ = &part;
      handedOut_ = count - 1;
      pending_.store(count - 1);
      round_.fetch_add(1);
    }
    wake_.notify_all();
    part(0);
    if (!awaitAwake([&] { return pending_.load() == 0; }, std::chrono::microseconds(200))) {
      std::unique_lock lock(mutex_);
      done_.wait(lock, [&] { return pending_.load() == 0; });
    }
    return true;
  }

 private:
  bool keep(int count) {
    try {
      while (static_cast<int>(threads_.size()) < count)
        threads_.emplace_back(&KeptThreads::serve, this, static_cast<int>(threads_.size()) + 1);
    } catch (const std::system_error&) {
      return false;
    }
    return true;
  }

  void serve(int index) {
    uint64_t seen = 0;
    for (;;) {
      awaitAwake([&] { return round_.load() != seen; }, std::chrono::microseconds(500));
      std::unique_lock lock(mutex_);
      wake_.wait(lock, [&] { return ending_ || round_.load() != seen; });
      if (ending_) return;
      seen = round_.load();
      if (index > handedOut_) continue;
      const std::function<void(int)>& part = *part_;
      lock.unlock();
      part(index);
      if (pending_.fetch_sub(1) == 1) {
        std::lock_guard done(mutex_);
        done_.notify_one();
      }
    }
  }

  std::mutex taken_;  // held by the split in progress
  std::mutex mutex_;
  std::condition_variable wake_, done_;
  std::vector<std::thread> threads_;
  const std::function<void(int)>* part_ = nullptr;
  int handedOut_ = 0;
  std::atomic<int> pending_{0};
  std::atomic<uint64_t> round_{0};
  bool ending_ = false;
};

}  // namespace

void RunParts(int count, const std::function<void(int)>& part) {
  std::vector<std::exception_ptr> failures(static_cast<size_t>(std::max(count, 0)));
  const std::function<void(int)> run = [&](int k) {
    try {
      part(k);
    } catch (...) {
      failures[static_cast<size_t>(k)] = std::current_exception();
    }
  };
  if (count == 1) {
    run(0);
  } else if (count > 1 && !KeptThreads::instance().run(count, run)) {
    std::vector<std::thread> others;
    for (int k = 1; k < count; ++k) {
      try {
        others.emplace_back(run, k);
      } catch (const std::system_error&) {  // no thread to be had: this one does the part
        run(k);
      }
    }
    run(0);
    for (std::thread& t : others) t.join();
  }
  for (const std::exception_ptr& failure : failures)
    if (failure) std::rethrow_exception(failure);
}

int WorkPartCount() { return std::max(1u, std::thread::hardware_concurrency()); }

}  // namespace orvane
