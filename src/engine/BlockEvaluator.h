#pragma once
// Runs a compiled formula over a block of points at once: each instruction is one pass
// over the block's lanes, so the dispatch is paid once per block and not once per point.
// Every lane computes through the same operations as the point loop (Evaluator.h), in
// the same order, so it gives the same bits, and each lane keeps the error the point
// loop would have stopped at. Nothing is reported here: the caller reports the lanes it
// takes, in order, as if it had evaluated them one by one.

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "engine/Program.h"

namespace orvane {

// Points per block: enough to spread the dispatch thin, few enough that a formula's
// stack of lanes stays in the first-level cache.
constexpr int32_t BlockLanes = 256;

// A field of a registered object that takes one value per lane (x, or x and y, or u and
// v); every other field keeps the value it holds.
struct BlockInput {
  double* field = nullptr;
  const double* lanes = nullptr;
};

// What each lane gave: its value, or the engine error it stopped at (with the failing
// instruction, as in Evaluation), and the last failure an object's function recorded
// in its failure field (ScriptObject::failureField) before that.
struct BlockOutcome {
  int32_t count = 0;
  const Program* program = nullptr;  // for the errors' positions, while `generation` holds
  uint64_t generation = 0;
  double value[BlockLanes];
  int32_t error[BlockLanes];
  int32_t faultAt[BlockLanes];
  int32_t objectError[BlockLanes];
};

struct BlockCode;  // a program as passes over lanes (BlockEvaluator.cpp)

// Scratch lanes for the passes, kept between blocks.
class BlockWorkspace {
 public:
  double* rows(size_t count);
  const double** fieldRows(size_t count);

 private:
  std::vector<double> rows_;
  std::vector<const double*> fieldRows_;
};

// Runs `program` (prepared, an expression) on `count` <= BlockLanes points. Programs the
// passes do not cover (texts, late names, kinds) run point by point with the inputs
// placed in their fields, which are restored afterwards. Throws std::bad_alloc only.
void executeBlock(const Program& program, std::span<const BlockInput> inputs, int32_t count, Variables& variables,
                  BlockWorkspace& workspace, BlockOutcome& outcome);

// The first lane without a finite value (an error, or a value that is not finite), or
// the outcome's count when every lane has one.
int32_t FirstPointWithoutValue(const BlockOutcome& outcome) noexcept;

// Runs `program` over `count` points, any number of them (each input's lanes hold `count`
// values), block after block, the blocks shared out over the machine's cores. Only a
// program the passes cover and that calls no object's function runs so: its blocks then
// share nothing but what they read. Puts the leading points that have a finite value in
// `values` and returns how many; it stops short of the first point without one, which a
// block of its own (executeBlock) then explains. Returns 0 for a program it cannot run
// so, and when memory runs out.
int32_t executeRun(const Program& program, std::span<const BlockInput> inputs, int32_t count,
                   double* values) noexcept;

}  // namespace orvane
