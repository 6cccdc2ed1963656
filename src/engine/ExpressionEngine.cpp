#include "engine/ExpressionEngine.h"

#include <new>
#include <optional>

#include "engine/Compiler.h"
#include "engine/Evaluator.h"

namespace orvane {

namespace {

constexpr int32_t OutOfMemory = 7;
constexpr size_t MaxCachedTexts = 4096;

bool isIdentifier(std::string_view name) {
  auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  if (name.empty() || !letter(name[0])) return false;
  for (char c : name)
    if (!letter(c) && !(c >= '0' && c <= '9') && c != '_') return false;
  return true;
}

}  // namespace

void ExpressionEngine::AddObject(std::string_view name, ScriptObject& object, bool addMembers) {
  if (!isIdentifier(name)) raise(RuntimeError(err::InvalidCall));
  std::string key = lowerName(name);
  if (scope_.objects.count(key)) raise(RuntimeError(err::NameInUse, scriptErrorDescription(err::NameInUse)));
  RegisteredObject entry{std::string(name), &object, {}};
  for (const ScriptMember& m : object.scriptMembers()) {
    Binding b;
    switch (m.kind) {
      case ScriptMember::Kind::Double: b.kind = Binding::Kind::Double; b.field = m.doubleField; break;
      case ScriptMember::Kind::Int32: b.kind = Binding::Kind::Int32; b.intField = m.intField; break;
      case ScriptMember::Kind::Function: b.kind = Binding::Kind::Function; b.function = m.function; break;
    }
    b.self = &object;
    std::string member = lowerName(m.name);
    if (addMembers) scope_.globals[member] = b;
    entry.members[member] = b;
  }
  scope_.objects.emplace(std::move(key), std::move(entry));
  forgetCompiled();  // names compiled as undefined may now be members
}

void ExpressionEngine::ExecuteStatement(std::string_view text) { run(text, true); }

void ExpressionEngine::AddCode(std::string_view text) { run(text, false); }

double ExpressionEngine::evalText(std::string_view text) {
  double result = 0;
  std::optional<RuntimeError> error;
  if (evaluate(text, result, error)) throw *error;
  return result;
}

void ExpressionEngine::raiseFault(int32_t number, int32_t faultAt) {
  raise(describeFault(*lastProgram_, number, faultAt));
}

void ExpressionEngine::reportFault(const Program& program, int32_t number, int32_t faultAt,
                                   std::optional<RuntimeError>* error) noexcept {
  try {
    std::optional<RuntimeError> local;
    std::optional<RuntimeError>& slot = error ? *error : local;
    slot.emplace(describeFault(program, number, faultAt));
    report(*slot);
  } catch (const std::bad_alloc&) {
  }
}

void ExpressionEngine::Reset() {
  forgetCompiled();
  scope_.globals.clear();
  scope_.objects.clear();
  scope_.variables.clear();
}

void ExpressionEngine::SetOptimize(bool on) {
  optimize_ = on;
  forgetCompiled();
}

const Program& ExpressionEngine::compiled(Cache& cache, std::string_view text, bool statements) {
  if (auto it = cache.find(text); it != cache.end()) return *it->second;
  auto program = compile(text, scope_, {statements, optimize_});
  // A window that keeps producing new texts (settings typed one character at a time)
  // must not grow the cache without end; starting afresh costs one compilation each.
  if (cache.size() >= MaxCachedTexts) {
    cache.clear();
    ++generation_;
    lastProgram_ = nullptr;
    lastText_ = {};
  }
  return *cache.emplace(std::string(text), std::move(program)).first->second;
}

const Program* ExpressionEngine::program(std::string_view text, std::optional<RuntimeError>& error) noexcept {
  if (lastProgram_ && sameText(text, lastText_)) return lastProgram_;
  try {
    auto it = expressions_.find(text);
    if (it == expressions_.end()) {
      compiled(expressions_, text, false);
      it = expressions_.find(text);
    }
    lastText_ = it->first;
    lastProgram_ = it->second.get();
    return lastProgram_;
  } catch (const RuntimeError& e) {
    error.emplace(e);
    report(e);
  } catch (const std::bad_alloc&) {
    error.emplace(OutOfMemory);
  }
  return nullptr;
}

int32_t ExpressionEngine::evaluate(std::string_view text, double& result,
                                   std::optional<RuntimeError>& error) noexcept {
  const Program* program = this->program(text, error);
  if (!program) return error->number();
  Evaluation outcome = execute(*program, scope_.variables);
  if (outcome.error) [[unlikely]]
    reportFault(*program, outcome.error, outcome.faultAt, &error);
  else
    result = outcome.value;
  return outcome.error;
}

int32_t ExpressionEngine::EvalBlock(std::string_view text, std::span<const BlockInput> inputs, int32_t count,
                                    BlockOutcome& outcome) noexcept {
  std::optional<RuntimeError> error;
  const Program* program = this->program(text, error);
  if (!program) return error->number();
  try {
    executeBlock(*program, inputs, count, scope_.variables, blockWorkspace_, outcome);
  } catch (const std::bad_alloc&) {
    return OutOfMemory;
  }
  outcome.program = program;
  outcome.generation = generation_;
  return 0;
}

int32_t ExpressionEngine::EvalRun(std::string_view text, std::span<const BlockInput> inputs, int32_t count,
                                  double* values) noexcept {
  // Only the expression evaluated last: it compiled, and a text's compile error is
  // reported where it is first evaluated, once.
  if (!lastProgram_ || !sameText(text, lastText_)) return 0;
  return executeRun(*lastProgram_, inputs, count, values);
}

void ExpressionEngine::ReportBlockFault(const BlockOutcome& outcome, int32_t lane) noexcept {
  if (lane < 0 || lane >= outcome.count || !outcome.error[lane]) return;
  if (outcome.program && outcome.generation == generation_)
    reportFault(*outcome.program, outcome.error[lane], outcome.faultAt[lane]);
  else  // the compiled texts were forgotten since: the number alone
    report(RuntimeError(outcome.error[lane]));
}

void ExpressionEngine::run(std::string_view text, bool cached) {
  std::unique_ptr<Program> once;
  const Program* program;
  try {
    if (cached) {
      program = &compiled(statements_, text, true);
    } else {
      once = compile(text, scope_, {true, optimize_});
      program = once.get();
    }
  } catch (const RuntimeError& e) {
    raise(e);
  }
  uint64_t created = scope_.variables.created();
  uint64_t retyped = scope_.variables.retyped();
  Evaluation ran = execute(*program, scope_.variables);
  std::optional<RuntimeError> error;
  if (ran.error) error.emplace(describeFault(*program, ran.error, ran.faultAt));
  auto drop = [this](Cache& cache, auto stale) {
    std::erase_if(cache, [&](const auto& entry) { return stale(*entry.second); });
    ++generation_;
    lastProgram_ = nullptr;
    lastText_ = {};
  };
  if (scope_.variables.created() != created) {
    // Texts compiled while a name was still undefined look it up on every run; now
    // that it exists, compile them again so they bind it by address.
    auto lateBound = [](const Program& p) { return p.lateBound; };
    drop(expressions_, lateBound);
    drop(statements_, lateBound);
  }
  if (scope_.variables.retyped() != retyped) {
    // A variable now holds another kind of number than the formulas reading it were
    // compiled for (statements read the kind as they run).
    drop(expressions_, [](const Program& p) { return p.bindsVariables; });
  }
  if (error) raise(*error);
}

void ExpressionEngine::raise(const RuntimeError& error) {
  report(error);
  throw error;
}

void ExpressionEngine::report(const RuntimeError& error) noexcept {
  if (!handler_) return;
  try {
    handler_(error);
  } catch (...) {
    // The handler is a notification; the caller still gets the error.
  }
}

void ExpressionEngine::forgetCompiled() {
  ++generation_;
  lastProgram_ = nullptr;
  lastText_ = {};
  expressions_.clear();
  statements_.clear();
}

}  // namespace orvane
