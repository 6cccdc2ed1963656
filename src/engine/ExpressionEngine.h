#pragma once
// The formula service each window owns: registered objects, script variables made by
// statements, and the compiled form of every text it has seen. Every error it raises
// goes first to the error handler (the window's Error event), then to the caller as a
// RuntimeError.

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "engine/BlockEvaluator.h"
#include "engine/Evaluator.h"
#include "engine/Program.h"
#include "engine/ScriptObject.h"
#include "platform/RuntimeError.h"

namespace orvane {

class ExpressionEngine {
 public:
  ExpressionEngine() = default;
  ExpressionEngine(const ExpressionEngine&) = delete;
  ExpressionEngine& operator=(const ExpressionEngine&) = delete;

  // The script language the engine speaks.
  static constexpr std::string_view Language = "VBScript";

  // Registers `object` under `name`; with `addMembers` its members are also global
  // names (x instead of sh.x). The object must outlive its registration.
  void AddObject(std::string_view name, ScriptObject& object, bool addMembers);

  // Runs "name = expression" statements (separated by ":"). Assigning to a name that
  // nothing defines creates a script variable holding a Double.
  void ExecuteStatement(std::string_view text);

  // The value of an expression; in it "=" compares. The repeated text of a sampling
  // loop runs inline, straight into the evaluator.
  double Eval(std::string_view text) {
    if (lastProgram_ && sameText(text, lastText_)) [[likely]] {
      Evaluation outcome = execute(*lastProgram_, scope_.variables);
      if (outcome.error) [[unlikely]]
        raiseFault(outcome.error, outcome.faultAt);
      return outcome.value;
    }
    return evalText(text);
  }

  // Statements, one per line; the whole text is checked before any of it runs.
  void AddCode(std::string_view text);

  // Forgets objects, variables and compiled texts (the handler and the switches stay).
  void Reset();

  // Called with every error the engine raises, before the call that met it fails.
  // It must not throw.
  void SetErrorHandler(std::function<void(const RuntimeError&)> handler) { handler_ = std::move(handler); }

  // Eval without exceptions for sampling loops: 0 and the value, or the error number
  // (the handler has been called). Allocates nothing once the text is compiled.
  int32_t TryEval(std::string_view text, double& result) noexcept {
    if (lastProgram_ && sameText(text, lastText_)) [[likely]] {
      Evaluation outcome = execute(*lastProgram_, scope_.variables);
      if (outcome.error) [[unlikely]]
        reportFault(*lastProgram_, outcome.error, outcome.faultAt);
      else
        result = outcome.value;
      return outcome.error;
    }
    std::optional<RuntimeError> error;
    return evaluate(text, result, error);
  }

  // The expression at up to BlockLanes points at once (BlockEvaluator.h), reporting
  // nothing: the caller reports the lanes it takes with ReportBlockFault. Returns 0, or
  // the number of a text that does not compile, which is reported here once for the
  // whole block (every lane then fails with it).
  int32_t EvalBlock(std::string_view text, std::span<const BlockInput> inputs, int32_t count,
                    BlockOutcome& outcome) noexcept;

  // The expression at `count` points, any number, spread over the machine's cores
  // where it can be (executeRun in BlockEvaluator.h): the leading points with a value
  // are put in `values` and counted, and nothing is reported. Only the expression
  // evaluated last runs so (EvalBlock or TryEval compiles it first); it returns 0 for
  // any other text and for an expression that cannot be spread.
  int32_t EvalRun(std::string_view text, std::span<const BlockInput> inputs, int32_t count, double* values) noexcept;

  // Calls the error handler for a lane's engine error, as evaluating the lane's point
  // alone would have.
  void ReportBlockFault(const BlockOutcome& outcome, int32_t lane) noexcept;

  // Constant folding and fused instructions; off only to cross-check them in tests.
  void SetOptimize(bool on);

 private:
  using Cache = NameMap<std::unique_ptr<Program>>;

  // Equality of two texts, inlined: formulas are short, and a library call costs more
  // than the comparison on the per-point path.
  static bool sameText(std::string_view a, std::string_view b) {
    size_t n = a.size();
    if (n != b.size()) return false;
    const char* p = a.data();
    const char* q = b.data();
    if (n < 8) {
      for (; n > 0; --n, ++p, ++q)
        if (*p != *q) return false;
      return true;
    }
    // Whole words, the last one overlapping its predecessor.
    auto word = [](const char* c) {
      uint64_t w;
      std::memcpy(&w, c, 8);
      return w;
    };
    for (size_t i = 0; i + 8 < n; i += 8)
      if (word(p + i) != word(q + i)) return false;
    return word(p + n - 8) == word(q + n - 8);
  }

  double evalText(std::string_view text);
  [[noreturn]] void raiseFault(int32_t number, int32_t faultAt);
  void reportFault(const Program& program, int32_t number, int32_t faultAt,
                   std::optional<RuntimeError>* error = nullptr) noexcept;
  const Program& compiled(Cache& cache, std::string_view text, bool statements);
  int32_t evaluate(std::string_view text, double& result, std::optional<RuntimeError>& error) noexcept;
  const Program* program(std::string_view text, std::optional<RuntimeError>& error) noexcept;
  void run(std::string_view text, bool cached);
  [[noreturn]] void raise(const RuntimeError& error);
  void report(const RuntimeError& error) noexcept;
  void afterStatements(uint64_t createdBefore);
  void forgetCompiled();

  Scope scope_;
  Cache expressions_;
  Cache statements_;
  std::string_view lastText_;         // key of the last evaluated text, in expressions_
  const Program* lastProgram_ = nullptr;
  uint64_t generation_ = 0;  // counts the times compiled programs were dropped
  BlockWorkspace blockWorkspace_;
  std::function<void(const RuntimeError&)> handler_;
  bool optimize_ = true;
};

}  // namespace orvane
