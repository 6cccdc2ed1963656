#pragma once
// A mouse wheel turned in whole notches. A notch is 120 eighths of a degree; finer wheels
// and touchpads send parts of one, which add up until they make a whole notch.

namespace orvane {

class WheelNotches {
 public:
  // The whole notches the turn completes, positive away from the user; the rest is kept.
  int add(int angleDelta) {
    rest_ += angleDelta;
    const int notches = rest_ / kNotch;
    rest_ -= notches * kNotch;
    return notches;
  }

 private:
  static constexpr int kNotch = 120;
  int rest_ = 0;
};

}  // namespace orvane
