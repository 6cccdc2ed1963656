#pragma once
// Runs a compiled Program: one dispatch loop (each handler jumps straight to the next
// instruction's) over a stack sized by the compiler. On the success path nothing is
// allocated (texts aside) and nothing is thrown; a failure stops at the instruction
// that raised it.

#include <cstdint>

#include "engine/Program.h"
#include "platform/RuntimeError.h"

namespace orvane {

// Binds each instruction to its handler in the loop that will run the program; the
// compiler calls it last, and execute() needs it.
void prepare(Program& program) noexcept;

// How a run ended: error 0 and the expression's value, or the error number with the
// failing instruction in `faultAt` (negative: the inner operator of a fused pair, for
// describeFault). Returned in registers, so the loop keeps no pointers to its caller.
struct Evaluation {
  double value;
  int32_t error;
  int32_t faultAt;
};

// Runs a prepared program. Statements may create variables.
Evaluation execute(const Program& program, Variables& variables) noexcept;

// The error as the user sees it: number, description and the instruction's position.
RuntimeError describeFault(const Program& program, int32_t number, int32_t faultAt);

}  // namespace orvane
