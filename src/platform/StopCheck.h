#pragma once
// Long work (a plot, a root or extrema scan, an integral, a stereo mesh) can be stopped
// between two evaluations of the formula. The routine polls a StopCheck at each one;
// the check reads the clock only now and then, and about every 20 ms asks its owner
// whether to stop. A window lets its events run there, so that Esc and the close box
// are seen while it works; the batch tool reads the flag its signal handler sets. When
// the answer is yes, the poll throws WorkInterrupted, which the routine catches at its
// top: what it found or drew so far stays, and it says it was interrupted.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string_view>

namespace orvane {

// What a label shows for work that was stopped before its end.
inline constexpr std::string_view kInterruptedText = "Interrupted";

// Thrown by StopCheck; deliberately no RuntimeError, so that no error trap of a routine
// takes it for a point without value.
struct WorkInterrupted {};

class StopCheck {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr Clock::duration kAskInterval = std::chrono::milliseconds(20);

  // `shouldStop` is asked at most every `interval`; with a zero interval it is asked at
  // every poll (for a question as cheap as the poll itself).
  explicit StopCheck(std::function<bool()> shouldStop, Clock::duration interval = kAskInterval);

  // Between two evaluations: a count most of the time. Throws WorkInterrupted once the
  // owner has said stop (and at every poll after that).
  void poll() {
    if (--countdown_ <= 0) pollSlowly();
  }
  // Before a block of up to `count` evaluations: polls as for the first of them and
  // returns how many may run (at least one) before a poll would read the clock again,
  // counting them all, so a block is stopped as often as single evaluations are.
  int32_t poll(int32_t count) {
    poll();
    const int32_t more = std::max(0, std::min(count, countdown_) - 1);
    countdown_ -= more;
    return 1 + more;
  }
  // Asks now, whatever the clock: the places where a plot lets events run anyway.
  void askNow();
  bool interrupted() const { return interrupted_; }

 private:
  void pollSlowly();
  void ask();

  std::function<bool()> shouldStop_;
  Clock::duration interval_;
  int32_t countdown_ = 1;
  int32_t pollsPerReading_ = 1;  // polls between two readings of the clock
  Clock::time_point lastReading_;
  Clock::time_point lastAsked_;
  bool interrupted_ = false;
};

}  // namespace orvane
