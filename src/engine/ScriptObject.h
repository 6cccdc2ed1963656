#pragma once
// How a native object shows itself to formulas: named Double fields, 32-bit integer
// fields and one-argument functions. The engine reads the member list once, when the
// object is added, and binds compiled formulas to the field addresses it gives.

#include <cstdint>
#include <string_view>
#include <vector>

namespace orvane {

class ScriptObject;

// A function member. `error` starts at 0; a function that fails sets it to a run-time
// error number, and the engine then raises that error at the call.
using ScriptFunction = double (*)(ScriptObject& self, double argument, int32_t& error);

struct ScriptMember {
  enum class Kind : uint8_t { Double, Int32, Function };

  std::string_view name;
  Kind kind = Kind::Double;
  double* doubleField = nullptr;
  int32_t* intField = nullptr;
  ScriptFunction function = nullptr;

  static ScriptMember field(std::string_view name, double& value) {
    return {name, Kind::Double, &value, nullptr, nullptr};
  }
  static ScriptMember field(std::string_view name, int32_t& value) {
    return {name, Kind::Int32, nullptr, &value, nullptr};
  }
  static ScriptMember method(std::string_view name, ScriptFunction function) {
    return {name, Kind::Function, nullptr, nullptr, function};
  }
};

class ScriptObject {
 public:
  virtual ~ScriptObject() = default;

  // The members in declaration order. Field addresses must stay valid for as long as
  // the object is registered in an engine; names must outlive the call.
  virtual std::vector<ScriptMember> scriptMembers() = 0;

  // The field where the object's functions record a failure instead of raising it, if
  // they do: a block of points (BlockEvaluator.h) reads it for each point.
  virtual int32_t* failureField() { return nullptr; }
};

}  // namespace orvane
