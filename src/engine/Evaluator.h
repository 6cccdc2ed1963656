#pragma once
// Runs a compiled Program: one dispatch loop (each handler jumps straight to the next
// instruction's) over a stack sized by the compiler. On the success path nothing is
// allocated (texts aside) and nothing is thrown; a failure stops at the instruction
// that raised it.

#include <cstdint>

#include "engine/Program.h"
#include "platform/RuntimeError.h"

namespace orvane {

// 0 and the expression's value in `result` on success; else the error number, with
// the failing instruction in `faultAt` (negative: the inner operator of a fused pair,
// for describeFault). Statements may create variables.
int32_t execute(const Program& program, Variables& variables, double& result, int32_t& faultAt) noexcept;

// The error as the user sees it: number, description and the instruction's position.
RuntimeError describeFault(const Program& program, int32_t number, int32_t faultAt);

}  // namespace orvane
