#include "engine/BlockEvaluator.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstring>

#include "engine/Evaluator.h"
#include "engine/VbMath.h"
#include "platform/WorkParts.h"

namespace orvane {

// One instruction as a pass over lanes. The stack becomes rows of lanes: the entry at
// depth d is row d, so each pass knows its rows when the program is translated.
struct Pass {
  Op op = Op::Return;
  int32_t at = 0;     // the instruction's index, as Evaluation::faultAt
  int32_t inner = 0;  // a fused pair's inner operator, likewise
  uint16_t out = 0, a = 0, b = 0;
  double c = 0, addend = 0;
  ScriptFunction function = nullptr;
  ScriptObject* self = nullptr;
};

struct BlockCode {
  bool passes = false;  // false: the program runs point by point
  std::vector<Pass> steps;
  std::vector<double*> fields;  // the fields read, at rows firstField + i
  uint16_t keptRow = 0, firstField = 0, result = 0;
  int32_t rows = 0;
  int32_t failAt = -1;  // a Fail every lane reaches, and its number
  int32_t failNumber = 0;
  std::vector<ScriptObject*> called;  // the objects whose functions the program calls
};

double* BlockWorkspace::rows(size_t count) {
  if (rows_.size() < count) rows_.resize(count);
  return rows_.data();
}

const double** BlockWorkspace::fieldRows(size_t count) {
  if (fieldRows_.size() < count) fieldRows_.resize(count);
  return fieldRows_.data();
}

namespace {

std::shared_ptr<const BlockCode> translate(const Program& p) {
  auto code = std::make_shared<BlockCode>();
  for (const Instr& in : p.code)
    if ((in.op == Op::Call || in.op == Op::CallVar) &&
        std::find(code->called.begin(), code->called.end(), in.call.self) == code->called.end())
      code->called.push_back(in.call.self);
  if (!p.plain || p.isStatement) return code;

  code->keptRow = static_cast<uint16_t>(p.maxDepth + 1);
  code->firstField = static_cast<uint16_t>(p.maxDepth + 2);
  auto field = [&](double* f) {
    auto it = std::find(code->fields.begin(), code->fields.end(), f);
    if (it == code->fields.end()) it = code->fields.insert(it, f);
    return static_cast<uint16_t>(code->firstField + (it - code->fields.begin()));
  };
  uint16_t depth = 0;
  for (size_t i = 0; i < p.code.size(); ++i) {
    const Instr& in = p.code[i];
    Pass s;
    s.op = in.op;
    s.at = static_cast<int32_t>(i);
    s.inner = -1 - in.index;
    switch (in.op) {
      case Op::Const: s.c = in.value; s.out = ++depth; break;
      case Op::LoadDouble: s.a = field(in.field); s.out = ++depth; break;
      case Op::Call: s.function = in.call.function; s.self = in.call.self; [[fallthrough]];
      case Op::Neg: case Op::Not: case Op::Square: case Op::Cube: case Op::Abs: case Op::Atn: case Op::Cos:
      case Op::Exp: case Op::Fix: case Op::Int: case Op::Log: case Op::Round: case Op::Sgn: case Op::Sin:
      case Op::Sqr: case Op::Tan: case Op::CDbl: case Op::CInt: case Op::CLng: case Op::CSng: case Op::CBool:
        s.out = s.a = depth;
        break;
      case Op::AddConst: case Op::MulConst: case Op::DivConst: case Op::PowConst:
        s.c = in.value;
        s.out = s.a = depth;
        break;
      case Op::AddVar: case Op::SubVar: case Op::MulVar: case Op::DivVar: case Op::PowVar:
        s.b = field(in.field);
        s.out = s.a = depth;
        break;
      case Op::VarAddConst: case Op::VarMulConst: case Op::ConstSubVar: case Op::VarDivConst:
      case Op::ConstDivVar: case Op::VarSquare: case Op::VarCube: case Op::VarMulConstAddConst:
        s.a = field(in.withConst.field);
        s.c = in.withConst.value;
        s.addend = in.withConst.addend;
        s.out = ++depth;
        break;
      case Op::VarAddVar: case Op::VarSubVar: case Op::VarMulVar: case Op::VarMulVarAddConst:
        s.a = field(in.fields.left);
        s.b = field(in.fields.right);
        s.addend = in.fields.addend;
        s.out = ++depth;
        break;
      case Op::MulVarAddConst: case Op::AddVarMulConst: case Op::SubVarMulConst:
        s.b = field(in.withConst.field);
        s.c = in.withConst.value;
        s.out = s.a = depth;
        break;
      case Op::AbsVar: case Op::AtnVar: case Op::CosVar: case Op::ExpVar: case Op::LogVar: case Op::SinVar:
      case Op::SqrVar: case Op::TanVar:
        s.a = field(in.field);
        s.out = ++depth;
        break;
      case Op::SinKeepCos: case Op::CosKeepSin:
        s.a = field(in.field);
        s.b = code->keptRow;
        s.out = ++depth;
        break;
      case Op::PushKept: s.a = code->keptRow; s.out = ++depth; break;
      case Op::CallVar:
        s.a = field(in.call.argument);
        s.function = in.call.function;
        s.self = in.call.self;
        s.out = ++depth;
        break;
      case Op::Add: case Op::Sub: case Op::Mul: case Op::Div: case Op::Pow: case Op::IntDiv: case Op::Mod:
      case Op::Eq: case Op::Ne: case Op::Lt: case Op::Gt: case Op::Le: case Op::Ge: case Op::And: case Op::Or:
      case Op::Xor: case Op::Eqv: case Op::Imp: case Op::Round2:
        s.b = depth;
        s.out = s.a = --depth;
        break;
      case Op::Fail:  // there is no branch: nothing after it runs
        code->failAt = static_cast<int32_t>(i);
        code->failNumber = in.error;
        code->rows = code->firstField + static_cast<int32_t>(code->fields.size());
        code->passes = true;
        return code;
      case Op::Return:
        code->result = depth;
        code->rows = code->firstField + static_cast<int32_t>(code->fields.size());
        code->passes = true;
        return code;
      default:  // texts, late names, integer fields: point by point
        return code;
    }
    code->steps.push_back(s);
  }
  return code;
}

// The passes' lanes and the outcome they fill.
class Lanes {
 public:
  Lanes(int32_t n, BlockOutcome& o) : n_(n), o_(o) {}

  // A lane keeps the first error it meets, as the point loop stops there.
  void fail(int32_t i, int32_t number, int32_t at) {
    if (!o_.error[i]) {
      o_.error[i] = number;
      o_.faultAt[i] = at;
    }
  }

  // An operation without errors.
  template <class F>
  void exact(double* out, F f) {
    for (int32_t i = 0; i < n_; ++i) out[i] = f(i);
  }

  // An operation whose only failure is a result out of range. (r - r) is +0 exactly for
  // a finite r, so one OR over the block tells whether any lane failed.
  template <class F>
  void finite(double* out, int32_t at, F f) {
    uint64_t bad = 0;
    for (int32_t i = 0; i < n_; ++i) {
      const double r = f(i);
      out[i] = r;
      bad |= std::bit_cast<uint64_t>(r - r);
    }
    if (bad) [[unlikely]]
      for (int32_t i = 0; i < n_; ++i)
        if (!std::isfinite(out[i])) fail(i, err::Overflow, at);
  }

  // A fused pair: the outer result decides whether the lane failed, the inner one where.
  template <class Inner, class Outer>
  void pair(double* out, const Pass& s, Inner inner, Outer outer) {
    uint64_t bad = 0;
    for (int32_t i = 0; i < n_; ++i) {
      const double r = outer(i, inner(i));
      out[i] = r;
      bad |= std::bit_cast<uint64_t>(r - r);
    }
    if (bad) [[unlikely]]
      for (int32_t i = 0; i < n_; ++i)
        if (!std::isfinite(out[i])) fail(i, err::Overflow, std::isfinite(inner(i)) ? s.at : s.inner);
  }

  // Any other operation: each lane through the checked operation itself.
  template <class F>
  void checked(double* out, int32_t at, F f) {
    for (int32_t i = 0; i < n_; ++i) {
      int32_t e = 0;
      out[i] = f(i, e);
      if (e) [[unlikely]]
        fail(i, e, at);
    }
  }

  // A function of an object: its failure field starts each lane at 0, and what it holds
  // after the call is the lane's, unless the lane had already stopped.
  void call(double* out, const double* a, const Pass& s) {
    int32_t* watched = s.self->failureField();
    for (int32_t i = 0; i < n_; ++i) {
      if (watched) *watched = 0;
      int32_t e = 0;
      out[i] = s.function(*s.self, a[i], e);
      if (watched && *watched && !o_.error[i]) o_.objectError[i] = *watched;
      if (e) [[unlikely]]
        fail(i, e, s.at);
    }
  }

 private:
  const int32_t n_;
  BlockOutcome& o_;
};

void runPasses(const BlockCode& code, std::span<const BlockInput> inputs, int32_t n, BlockWorkspace& workspace,
               BlockOutcome& o) {
  double* base = workspace.rows(static_cast<size_t>(code.rows) * BlockLanes);
  // Fields that take lanes are read where they are; the others hold one value each.
  const double** fieldRows = workspace.fieldRows(code.fields.size());
  for (size_t k = 0; k < code.fields.size(); ++k) {
    const BlockInput* input = nullptr;
    for (const BlockInput& in : inputs)
      if (in.field == code.fields[k]) input = &in;
    if (input) {
      fieldRows[k] = input->lanes;
    } else {
      double* row = base + (code.firstField + k) * BlockLanes;
      std::fill(row, row + n, *code.fields[k]);
      fieldRows[k] = row;
    }
  }
  auto row = [&](uint16_t r) { return base + static_cast<size_t>(r) * BlockLanes; };
  auto in = [&](uint16_t r) -> const double* {
    return r >= code.firstField ? fieldRows[r - code.firstField] : base + static_cast<size_t>(r) * BlockLanes;
  };

  Lanes lanes(n, o);
  for (const Pass& s : code.steps) {
    double* out = row(s.out);
    const double* a = in(s.a);
    const double* b = in(s.b);
    const double c = s.c;
    const double addend = s.addend;
    switch (s.op) {
      case Op::Const: std::fill(out, out + n, c); break;
      case Op::LoadDouble: case Op::PushKept: std::memcpy(out, a, sizeof(double) * static_cast<size_t>(n)); break;

      case Op::Neg: lanes.exact(out, [&](int32_t i) { return -a[i]; }); break;
      case Op::Abs: lanes.exact(out, [&](int32_t i) { return vb::abs(a[i]); }); break;
      case Op::Atn: lanes.exact(out, [&](int32_t i) { return vb::atn(a[i]); }); break;
      case Op::Cos: lanes.exact(out, [&](int32_t i) { return vb::cos(a[i]); }); break;
      case Op::Fix: lanes.exact(out, [&](int32_t i) { return vb::fix(a[i]); }); break;
      case Op::Int: lanes.exact(out, [&](int32_t i) { return vb::intPart(a[i]); }); break;
      case Op::Round: lanes.exact(out, [&](int32_t i) { return vb::round(a[i]); }); break;
      case Op::Sgn: lanes.exact(out, [&](int32_t i) { return vb::sgn(a[i]); }); break;
      case Op::Sin: lanes.exact(out, [&](int32_t i) { return vb::sin(a[i]); }); break;
      case Op::CDbl: break;
      case Op::CBool: lanes.exact(out, [&](int32_t i) { return vb::cbool(a[i]); }); break;
      case Op::Square: case Op::VarSquare: lanes.finite(out, s.at, [&](int32_t i) { return a[i] * a[i]; }); break;
      case Op::Cube: case Op::VarCube: lanes.finite(out, s.at, [&](int32_t i) { return a[i] * a[i] * a[i]; }); break;
      case Op::Exp: lanes.finite(out, s.at, [&](int32_t i) { return std::exp(a[i]); }); break;
      case Op::Tan: lanes.finite(out, s.at, [&](int32_t i) { return std::tan(a[i]); }); break;
      case Op::Not: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::bitNot(a[i], e); }); break;
      case Op::Log: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::log(a[i], e); }); break;
      case Op::Sqr: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::sqr(a[i], e); }); break;
      case Op::CInt: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::cint(a[i], e); }); break;
      case Op::CLng: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::clng(a[i], e); }); break;
      case Op::CSng: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::csng(a[i], e); }); break;
      case Op::Call: case Op::CallVar: lanes.call(out, a, s); break;

      case Op::Add: case Op::AddVar: case Op::VarAddVar: lanes.finite(out, s.at, [&](int32_t i) { return a[i] + b[i]; }); break;
      case Op::Sub: case Op::SubVar: case Op::VarSubVar: lanes.finite(out, s.at, [&](int32_t i) { return a[i] - b[i]; }); break;
      case Op::Mul: case Op::MulVar: case Op::VarMulVar: lanes.finite(out, s.at, [&](int32_t i) { return a[i] * b[i]; }); break;
      case Op::Div: case Op::DivVar: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::div(a[i], b[i], e); }); break;
      case Op::Pow: case Op::PowVar: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::pow(a[i], b[i], e); }); break;
      case Op::IntDiv:
        lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::intDiv(a[i], b[i], e); });
        break;
      case Op::Mod: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::mod(a[i], b[i], e); }); break;
      case Op::Eq: lanes.exact(out, [&](int32_t i) { return vb::boolean(a[i] == b[i]); }); break;
      case Op::Ne: lanes.exact(out, [&](int32_t i) { return vb::boolean(a[i] != b[i]); }); break;
      case Op::Lt: lanes.exact(out, [&](int32_t i) { return vb::boolean(a[i] < b[i]); }); break;
      case Op::Gt: lanes.exact(out, [&](int32_t i) { return vb::boolean(a[i] > b[i]); }); break;
      case Op::Le: lanes.exact(out, [&](int32_t i) { return vb::boolean(a[i] <= b[i]); }); break;
      case Op::Ge: lanes.exact(out, [&](int32_t i) { return vb::boolean(a[i] >= b[i]); }); break;
      case Op::And:
        lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::bitAnd(a[i], b[i], e); });
        break;
      case Op::Or: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::bitOr(a[i], b[i], e); }); break;
      case Op::Xor:
        lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::bitXor(a[i], b[i], e); });
        break;
      case Op::Eqv:
        lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::bitEqv(a[i], b[i], e); });
        break;
      case Op::Imp:
        lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::bitImp(a[i], b[i], e); });
        break;
      case Op::Round2:
        lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::round(a[i], b[i], e); });
        break;

      case Op::AddConst: case Op::VarAddConst: lanes.finite(out, s.at, [&](int32_t i) { return a[i] + c; }); break;
      case Op::MulConst: case Op::VarMulConst: lanes.finite(out, s.at, [&](int32_t i) { return a[i] * c; }); break;
      case Op::DivConst: case Op::VarDivConst:
        if (c != 0)  // then only a result out of range fails, as for a product
          lanes.finite(out, s.at, [&](int32_t i) { return a[i] / c; });
        else
          lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::div(a[i], c, e); });
        break;
      case Op::PowConst: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::pow(a[i], c, e); }); break;
      case Op::ConstSubVar: lanes.finite(out, s.at, [&](int32_t i) { return c - a[i]; }); break;
      case Op::ConstDivVar:
        lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::div(c, a[i], e); });
        break;

      case Op::MulVarAddConst:
        lanes.pair(out, s, [&](int32_t i) { return b[i] + c; }, [&](int32_t i, double inner) { return a[i] * inner; });
        break;
      case Op::AddVarMulConst:
        lanes.pair(out, s, [&](int32_t i) { return b[i] * c; }, [&](int32_t i, double inner) { return a[i] + inner; });
        break;
      case Op::SubVarMulConst:
        lanes.pair(out, s, [&](int32_t i) { return b[i] * c; }, [&](int32_t i, double inner) { return a[i] - inner; });
        break;
      case Op::VarMulConstAddConst:
        lanes.pair(out, s, [&](int32_t i) { return a[i] * c; }, [&](int32_t, double inner) { return inner + addend; });
        break;
      case Op::VarMulVarAddConst:
        lanes.pair(out, s, [&](int32_t i) { return a[i] * b[i]; }, [&](int32_t, double inner) { return inner + addend; });
        break;

      case Op::AbsVar: lanes.exact(out, [&](int32_t i) { return vb::abs(a[i]); }); break;
      case Op::AtnVar: lanes.exact(out, [&](int32_t i) { return vb::atn(a[i]); }); break;
      case Op::CosVar: lanes.exact(out, [&](int32_t i) { return vb::cos(a[i]); }); break;
      case Op::SinVar: lanes.exact(out, [&](int32_t i) { return vb::sin(a[i]); }); break;
      case Op::ExpVar: lanes.finite(out, s.at, [&](int32_t i) { return std::exp(a[i]); }); break;
      case Op::TanVar: lanes.finite(out, s.at, [&](int32_t i) { return std::tan(a[i]); }); break;
      case Op::LogVar: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::log(a[i], e); }); break;
      case Op::SqrVar: lanes.checked(out, s.at, [&](int32_t i, int32_t& e) { return vb::sqr(a[i], e); }); break;
      case Op::SinKeepCos: {
        double* kept = row(s.b);
        for (int32_t i = 0; i < n; ++i) vb::sinCos(a[i], out[i], kept[i]);
        break;
      }
      case Op::CosKeepSin: {
        double* kept = row(s.b);
        for (int32_t i = 0; i < n; ++i) vb::sinCos(a[i], kept[i], out[i]);
        break;
      }
      default: break;  // translate() made no other pass
    }
  }
  if (code.failAt >= 0) {
    for (int32_t i = 0; i < n; ++i) lanes.fail(i, code.failNumber, code.failAt);
    return;
  }
  std::memcpy(o.value, in(code.result), sizeof(double) * static_cast<size_t>(n));
}

// The point loop itself, one lane at a time, for what the passes do not cover.
void runPoints(const Program& p, const BlockCode& code, std::span<const BlockInput> inputs, int32_t n,
               Variables& variables, BlockOutcome& o) {
  std::vector<double> saved;
  for (const BlockInput& in : inputs) saved.push_back(*in.field);
  for (int32_t i = 0; i < n; ++i) {
    for (const BlockInput& in : inputs) *in.field = in.lanes[i];
    for (ScriptObject* object : code.called)
      if (int32_t* watched = object->failureField()) *watched = 0;
    const Evaluation e = execute(p, variables);
    o.value[i] = e.value;
    o.error[i] = e.error;
    o.faultAt[i] = e.faultAt;
    for (ScriptObject* object : code.called)
      if (int32_t* watched = object->failureField(); watched && *watched && !o.objectError[i])
        o.objectError[i] = *watched;
  }
  for (size_t k = 0; k < inputs.size(); ++k) *inputs[k].field = saved[k];
}

const BlockCode& blockCode(const Program& program) {
  if (!program.blockCode) program.blockCode = translate(program);
  return *program.blockCode;
}

void clearErrors(BlockOutcome& outcome, int32_t n) {
  outcome.count = n;
  std::fill(outcome.error, outcome.error + n, 0);
  std::fill(outcome.objectError, outcome.objectError + n, 0);
}

// A run shared out a block at a time: each part takes the next block not yet taken, so
// a part that started late or runs slower takes fewer. Blocks past one holding a point
// without value are not needed and are left.
class SharedRun {
 public:
  SharedRun(const BlockCode& code, std::span<const BlockInput> inputs, int32_t count, double* values)
      : code_(code), inputs_(inputs), count_(count), values_(values),
        blocks_((count + BlockLanes - 1) / BlockLanes), firstShort_(blocks_), goodIn_(static_cast<size_t>(blocks_)) {}

  int32_t blocks() const { return blocks_; }

  void take() {
    BlockWorkspace workspace;
    auto outcome = std::make_unique<BlockOutcome>();
    std::vector<BlockInput> shifted(inputs_.begin(), inputs_.end());
    for (int32_t b; (b = next_.fetch_add(1)) < blocks_ && b < firstShort_.load();) {
      const int32_t at = b * BlockLanes;
      const int32_t n = std::min(BlockLanes, count_ - at);
      for (size_t k = 0; k < inputs_.size(); ++k) shifted[k].lanes = inputs_[k].lanes + at;
      clearErrors(*outcome, n);
      runPasses(code_, shifted, n, workspace, *outcome);
      const int32_t good = FirstPointWithoutValue(*outcome);
      if (good > 0) std::memcpy(values_ + at, outcome->value, sizeof(double) * static_cast<size_t>(good));
      if (good < n) {
        goodIn_[static_cast<size_t>(b)] = good;
        for (int32_t seen = firstShort_.load(); b < seen && !firstShort_.compare_exchange_weak(seen, b);) {
        }
      }
    }
  }

  // Once every part has ended: the points before the first without value.
  int32_t leading() const {
    const int32_t b = firstShort_.load();
    return b == blocks_ ? count_ : b * BlockLanes + goodIn_[static_cast<size_t>(b)];
  }

 private:
  const BlockCode& code_;
  std::span<const BlockInput> inputs_;
  const int32_t count_;
  double* const values_;
  const int32_t blocks_;
  std::atomic<int32_t> next_{0};
  std::atomic<int32_t> firstShort_;  // the first block holding a point without value
  std::vector<int32_t> goodIn_;      // that block's points with a value
};

}  // namespace

void executeBlock(const Program& program, std::span<const BlockInput> inputs, int32_t count, Variables& variables,
                  BlockWorkspace& workspace, BlockOutcome& outcome) {
  const BlockCode& code = blockCode(program);
  const int32_t n = std::clamp(count, 0, BlockLanes);
  clearErrors(outcome, n);
  if (code.passes)
    runPasses(code, inputs, n, workspace, outcome);
  else
    runPoints(program, code, inputs, n, variables, outcome);
}

int32_t FirstPointWithoutValue(const BlockOutcome& outcome) noexcept {
  // One pass over the whole block first: (v - v) is +0 exactly for a finite v.
  uint64_t missing = 0;
  for (int32_t i = 0; i < outcome.count; ++i)
    missing |= static_cast<uint32_t>(outcome.error[i] | outcome.objectError[i]) |
               std::bit_cast<uint64_t>(outcome.value[i] - outcome.value[i]);
  if (!missing) return outcome.count;
  for (int32_t i = 0; i < outcome.count; ++i)
    if (outcome.error[i] || outcome.objectError[i] || !std::isfinite(outcome.value[i])) return i;
  return outcome.count;
}

int32_t executeRun(const Program& program, std::span<const BlockInput> inputs, int32_t count,
                   double* values) noexcept {
  // Below this many blocks a part would cost more to hand out than it saves.
  constexpr int32_t kBlocksPerPart = 16;
  try {
    const BlockCode& code = blockCode(program);
    if (!code.passes || code.failAt >= 0 || !code.called.empty() || count <= 0) return 0;
    SharedRun run(code, inputs, count, values);
    RunParts(std::clamp(run.blocks() / kBlocksPerPart, 1, WorkPartCount()), [&](int) { run.take(); });
    return run.leading();
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

}  // namespace orvane
