#pragma once
// Finite-difference estimates of the first and second partial derivatives of a surface
// z = f(x, y), with a fixed step: five-point formulas ("High") or three-point ones
// ("Med"). The values of f come in single precision; each formula works in double
// precision and its result is stored in single precision.

#include <cstdint>
#include <type_traits>
#include <utility>

namespace orvane {

// A non-owning reference to a callable, cheap enough for sampling loops.
template <class Signature>
class FunctionRef;

template <class R, class... Args>
class FunctionRef<R(Args...)> {
 public:
  template <class F, class = std::enable_if_t<!std::is_same_v<std::decay_t<F>, FunctionRef>>>
  FunctionRef(F&& f)  // NOLINT: implicit by design, like a function pointer
      : object_(const_cast<void*>(static_cast<const void*>(&f))),
        call_([](void* o, Args... a) -> R {
          return (*static_cast<std::remove_reference_t<F>*>(o))(std::forward<Args>(a)...);
        }) {}
  R operator()(Args... a) const { return call_(object_, std::forward<Args>(a)...); }

 private:
  void* object_;
  R (*call_)(void*, Args...);
};

// f(a, b): 0 and the height, or the error number of a point without value.
using HeightFunction = FunctionRef<int32_t(float a, float b, float& z)>;

// The stored step constants, single precision, not recomputed from h.
namespace pdstep {
constexpr float h = 0.02079f;
constexpr float h2 = 0.04158f;      // 2h
constexpr float h12 = 0.24948f;     // 12h
constexpr float h4sq = 0.0017288963f;  // 4h^2
constexpr float hh12 = 0.0051866891f;  // 12h^2
}  // namespace pdstep

// The derivative `selector` (1 Zx, 2 Zy, 3 Zxx, 4 Zyy, 5 Zxy) of f at (x, y), with the
// five-point formulas when `high`. Returns 0 and the value, or the error number of the
// first evaluation of f that failed (any failure makes the whole sample invalid), or 6
// when the result does not fit single precision. A selector outside 1..5 gives 5.
int32_t TryPartialDerivative(int selector, bool high, float x, float y, HeightFunction f,
                             float& out);

}  // namespace orvane
