#include "platform/StopCheck.h"

#include <algorithm>

namespace orvane {

namespace {

// The clock is read about this often, whatever one evaluation costs: often enough for
// a formula of a millisecond, rarely enough to cost nothing beside one of nanoseconds.
constexpr StopCheck::Clock::duration kReadingEvery = std::chrono::milliseconds(1);
// Enough for whole runs of points shared out over the cores between two readings; each
// command starts from one poll per reading, and a command's evaluations cost alike.
constexpr int32_t kMaxPollsPerReading = 1 << 16;

}  // namespace

StopCheck::StopCheck(std::function<bool()> shouldStop, Clock::duration interval)
    : shouldStop_(std::move(shouldStop)), interval_(interval) {
  lastReading_ = lastAsked_ = Clock::now();
}

void StopCheck::pollSlowly() {
  if (interrupted_) throw WorkInterrupted{};
  if (interval_ <= Clock::duration::zero()) {
    countdown_ = 1;
    ask();
    return;
  }
  const Clock::time_point now = Clock::now();
  const Clock::duration elapsed = now - lastReading_;
  lastReading_ = now;
  // Twice as many polls between readings while they come sooner than wanted; as many
  // fewer as they came too late (a formula that turned slow is caught at once).
  if (elapsed < kReadingEvery / 2) {
    pollsPerReading_ = std::min(pollsPerReading_ * 2, kMaxPollsPerReading);
  } else if (elapsed > kReadingEvery * 2) {
    const double scaled = pollsPerReading_ * (double(kReadingEvery.count()) / double(elapsed.count()));
    pollsPerReading_ = std::max<int32_t>(1, static_cast<int32_t>(scaled));
  }
  countdown_ = pollsPerReading_;
  if (now - lastAsked_ >= interval_) {
    lastAsked_ = now;
    ask();
  }
}

void StopCheck::askNow() {
  if (interrupted_) throw WorkInterrupted{};
  lastAsked_ = Clock::now();
  ask();
}

void StopCheck::ask() {
  if (shouldStop_ && shouldStop_()) {
    interrupted_ = true;
    countdown_ = 0;
    throw WorkInterrupted{};
  }
  // The time the owner took (events, a message box) is not the evaluations' time.
  lastReading_ = Clock::now();
}

}  // namespace orvane
