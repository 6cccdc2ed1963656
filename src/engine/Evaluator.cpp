#include "engine/Evaluator.h"

#include <cmath>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "engine/VbMath.h"
#include "platform/NumberText.h"

namespace orvane {

namespace {

constexpr int32_t OutOfMemory = 7;

bool relation(int cmp, uint8_t kind) {
  switch (static_cast<Compare>(kind & 0x7F)) {
    case Compare::Eq: return cmp == 0;
    case Compare::Ne: return cmp != 0;
    case Compare::Lt: return cmp < 0;
    case Compare::Gt: return cmp > 0;
    case Compare::Le: return cmp <= 0;
    case Compare::Ge: return cmp >= 0;
  }
  return false;
}

// The text operations run rarely; each turns its own exceptions into error numbers.
using Texts = std::vector<std::string>;

int32_t pushText(Texts& texts, const std::string& text) noexcept {
  try {
    texts.push_back(text);
    return 0;
  } catch (const std::bad_alloc&) {
    return OutOfMemory;
  }
}

int32_t pushNumberText(Texts& texts, double value) noexcept {
  try {
    texts.push_back(formatGeneral(value));
    return 0;
  } catch (const RuntimeError& e) {
    return e.number();
  } catch (const std::bad_alloc&) {
    return OutOfMemory;
  }
}

int32_t popNumber(Texts& texts, double& value) noexcept {
  try {
    value = parseStrict(texts.back());
    texts.pop_back();
    return 0;
  } catch (const RuntimeError& e) {
    return e.number();
  } catch (const std::bad_alloc&) {
    return OutOfMemory;
  }
}

int32_t concat(Texts& texts) noexcept {
  try {
    std::string right = std::move(texts.back());
    texts.pop_back();
    texts.back() += right;
    return 0;
  } catch (const std::bad_alloc&) {
    return OutOfMemory;
  }
}

// A number against a text: a numeric text compares by value; otherwise any number
// sorts before any text.
int compareMixed(double number, const std::string& text) noexcept {
  try {
    double v = parseStrict(text);
    return number < v ? -1 : (number > v ? 1 : 0);
  } catch (...) {
    return -1;
  }
}

int32_t storeName(Variables& variables, const std::string& key, double value) noexcept {
  try {
    *variables.create(key) = value;
    return 0;
  } catch (const std::bad_alloc&) {
    return OutOfMemory;
  }
}

// Each loop's handler table, given to prepare() by the loop itself (the addresses of its
// labels exist only inside it).
template <bool General>
const void* const* handlerTable = nullptr;

// The evaluation loop. The plain instance serves formulas of numbers and bound names
// only (the sampling loops); the general one adds texts, late names and statements.
template <bool General>
Evaluation run(const Program& p, Variables& variables) noexcept {
  const Instr* const code = p.code.data();
  const Instr* ip = code;
  int32_t error = 0;
  // The stack lives on the native stack unless the program is too deep for it.
  double local[PlainStackDepth];
  std::unique_ptr<double[]> heap;
  double* stack = local;
  if (General && p.maxDepth + 2 > PlainStackDepth) {
    heap.reset(new (std::nothrow) double[static_cast<size_t>(p.maxDepth) + 2]);
    if (!heap) return {0, OutOfMemory, 0};
    stack = heap.get();
  }
  Texts texts;
  double* sp = stack;  // the entries below the top; the top itself lives in `top`
  double top = 0;
  double kept = 0;     // the second of a Sin/Cos pair, until PushKept

#define PUSH(v)  \
  do {           \
    *++sp = top; \
    top = (v);   \
  } while (0)
#define FAIL_IF(e)        \
  if (e) [[unlikely]] {   \
    error = e;            \
    goto fault;           \
  }
// Threaded dispatch (labels as values, a GNU extension of GCC and Clang): every handler
// jumps straight to the next instruction's handler, held in the instruction, which
// predicts far better than one shared switch jump.
#define NEXT goto*(++ip)->handler
#define CASE(name) op_##name:
#define CHECKED(expr)     \
  {                       \
    int32_t e = 0;        \
    top = (expr);         \
    FAIL_IF(e);           \
    NEXT;                 \
  }
#define BINARY(fn)         \
  {                        \
    int32_t e = 0;         \
    double a = *sp--;      \
    top = fn(a, top, e);   \
    FAIL_IF(e);            \
    NEXT;                  \
  }
// An inner operation and the outer one that takes its result, both failing as overflow.
#define PAIR(innerExpr, outerExpr)              \
  {                                             \
    double inner = (innerExpr);                 \
    double outer = (outerExpr);                 \
    if (!std::isfinite(outer)) [[unlikely]] {   \
      if (!std::isfinite(inner)) goto innerFault; \
      error = err::Overflow;                    \
      goto fault;                               \
    }                                           \
    top = outer;                                \
    NEXT;                                       \
  }
#define GENERAL_ONLY(body)     \
  if constexpr (General) {     \
    body                       \
  } else {                     \
    __builtin_unreachable();   \
  }                            \
  NEXT;

  static const void* const labels[] = {
#define ORVANE_ENGINE_OP_LABEL(name) &&op_##name,
      ORVANE_ENGINE_OPS(ORVANE_ENGINE_OP_LABEL)
#undef ORVANE_ENGINE_OP_LABEL
  };
  if (p.code.empty()) [[unlikely]] {  // prepare() asking for the table
    handlerTable<General> = labels;
    return {};
  }
  goto* ip->handler;
  CASE(Const) PUSH(ip->value); NEXT;
  CASE(LoadDouble) PUSH(*ip->field); NEXT;
  CASE(LoadInt) PUSH(*ip->intField); NEXT;

  CASE(Neg) top = -top; NEXT;
  CASE(Not) CHECKED(vb::bitNot(top, e));
  CASE(Square) CHECKED(vb::checked(top * top, e));
  CASE(Cube) CHECKED(vb::checked(top * top * top, e));
  CASE(Abs) top = vb::abs(top); NEXT;
  CASE(Atn) top = vb::atn(top); NEXT;
  CASE(Cos) top = vb::cos(top); NEXT;
  CASE(Exp) CHECKED(vb::exp(top, e));
  CASE(Fix) top = vb::fix(top); NEXT;
  CASE(Int) top = vb::intPart(top); NEXT;
  CASE(Log) CHECKED(vb::log(top, e));
  CASE(Round) top = vb::round(top); NEXT;
  CASE(Sgn) top = vb::sgn(top); NEXT;
  CASE(Sin) top = vb::sin(top); NEXT;
  CASE(Sqr) CHECKED(vb::sqr(top, e));
  CASE(Tan) CHECKED(vb::tan(top, e));
  CASE(CDbl) NEXT;
  CASE(CInt) CHECKED(vb::cint(top, e));
  CASE(CLng) CHECKED(vb::clng(top, e));
  CASE(CSng) CHECKED(vb::csng(top, e));
  CASE(CBool) top = vb::cbool(top); NEXT;
  CASE(Call) CHECKED(ip->call.function(*ip->call.self, top, e));

  CASE(Add) BINARY(vb::add);
  CASE(Sub) BINARY(vb::sub);
  CASE(Mul) BINARY(vb::mul);
  CASE(Div) BINARY(vb::div);
  CASE(Pow) BINARY(vb::pow);
  CASE(IntDiv) BINARY(vb::intDiv);
  CASE(Mod) BINARY(vb::mod);
  CASE(Eq) top = vb::boolean(*sp-- == top); NEXT;
  CASE(Ne) top = vb::boolean(*sp-- != top); NEXT;
  CASE(Lt) top = vb::boolean(*sp-- < top); NEXT;
  CASE(Gt) top = vb::boolean(*sp-- > top); NEXT;
  CASE(Le) top = vb::boolean(*sp-- <= top); NEXT;
  CASE(Ge) top = vb::boolean(*sp-- >= top); NEXT;
  CASE(And) BINARY(vb::bitAnd);
  CASE(Or) BINARY(vb::bitOr);
  CASE(Xor) BINARY(vb::bitXor);
  CASE(Eqv) BINARY(vb::bitEqv);
  CASE(Imp) BINARY(vb::bitImp);
  CASE(Round2) BINARY(vb::round);

  CASE(AddConst) CHECKED(vb::add(top, ip->value, e));
  CASE(MulConst) CHECKED(vb::mul(top, ip->value, e));
  CASE(DivConst) CHECKED(vb::div(top, ip->value, e));
  CASE(PowConst) CHECKED(vb::pow(top, ip->value, e));
  CASE(AddVar) CHECKED(vb::add(top, *ip->field, e));
  CASE(SubVar) CHECKED(vb::sub(top, *ip->field, e));
  CASE(MulVar) CHECKED(vb::mul(top, *ip->field, e));
  CASE(DivVar) CHECKED(vb::div(top, *ip->field, e));
  CASE(PowVar) CHECKED(vb::pow(top, *ip->field, e));
  CASE(VarAddConst) PUSH(0); CHECKED(vb::add(*ip->withConst.field, ip->withConst.value, e));
  CASE(VarMulConst) PUSH(0); CHECKED(vb::mul(*ip->withConst.field, ip->withConst.value, e));
  CASE(ConstSubVar) PUSH(0); CHECKED(vb::sub(ip->withConst.value, *ip->withConst.field, e));
  CASE(VarAddVar) PUSH(0); CHECKED(vb::add(*ip->fields.left, *ip->fields.right, e));
  CASE(VarSubVar) PUSH(0); CHECKED(vb::sub(*ip->fields.left, *ip->fields.right, e));
  CASE(VarMulVar) PUSH(0); CHECKED(vb::mul(*ip->fields.left, *ip->fields.right, e));

  CASE(VarDivConst) PUSH(0); CHECKED(vb::div(*ip->withConst.field, ip->withConst.value, e));
  CASE(ConstDivVar) PUSH(0); CHECKED(vb::div(ip->withConst.value, *ip->withConst.field, e));
  CASE(VarSquare) PUSH(0); CHECKED(vb::checked(*ip->withConst.field * *ip->withConst.field, e));
  CASE(VarCube) {
    PUSH(0);
    double v = *ip->withConst.field;
    CHECKED(vb::checked(v * v * v, e));
  }
  // The fused pairs test only their result: a non-finite operand never gives a finite
  // sum or product, so a finite result means the inner operation succeeded too.
  CASE(MulVarAddConst) PAIR(*ip->withConst.field + ip->withConst.value, top * inner);
  CASE(AddVarMulConst) PAIR(*ip->withConst.field * ip->withConst.value, top + inner);
  CASE(SubVarMulConst) PAIR(*ip->withConst.field * ip->withConst.value, top - inner);
  CASE(VarMulConstAddConst) PUSH(0); PAIR(*ip->withConst.field * ip->withConst.value, inner + ip->withConst.addend);
  CASE(VarMulVarAddConst) PUSH(0); PAIR(*ip->fields.left * *ip->fields.right, inner + ip->fields.addend);

  CASE(AbsVar) PUSH(vb::abs(*ip->field)); NEXT;
  CASE(AtnVar) PUSH(vb::atn(*ip->field)); NEXT;
  CASE(CosVar) PUSH(vb::cos(*ip->field)); NEXT;
  CASE(SinVar) PUSH(vb::sin(*ip->field)); NEXT;
  CASE(ExpVar) PUSH(0); CHECKED(vb::exp(*ip->field, e));
  CASE(LogVar) PUSH(0); CHECKED(vb::log(*ip->field, e));
  CASE(SqrVar) PUSH(0); CHECKED(vb::sqr(*ip->field, e));
  CASE(TanVar) PUSH(0); CHECKED(vb::tan(*ip->field, e));
  CASE(SinKeepCos) PUSH(0); vb::sinCos(*ip->field, top, kept); NEXT;
  CASE(CosKeepSin) PUSH(0); vb::sinCos(*ip->field, kept, top); NEXT;
  CASE(PushKept) PUSH(kept); NEXT;
  CASE(CallVar) PUSH(0); CHECKED(ip->call.function(*ip->call.self, *ip->call.argument, e));

  CASE(Fail)
    error = ip->error;
    goto fault;
  CASE(Return)
    return {top, 0, 0};

  CASE(LoadName)
    GENERAL_ONLY({
      const double* v = variables.find(p.keys[ip->index]);
      if (!v) {
        error = err::UndefinedVariable;
        goto fault;
      }
      PUSH(*v);
    })
  CASE(PushText)
    GENERAL_ONLY({
      int32_t e = pushText(texts, p.texts[ip->index]);
      FAIL_IF(e);
    })
  CASE(NumberToText)
    GENERAL_ONLY({
      int32_t e = pushNumberText(texts, top);
      FAIL_IF(e);
      top = *sp--;
    })
  CASE(TextToNumber)
    GENERAL_ONLY({
      double v = 0;
      int32_t e = popNumber(texts, v);
      FAIL_IF(e);
      if (ip->compare)
        *++sp = v;  // the left operand of +, beneath the right one
      else
        PUSH(v);
    })
  CASE(Concat)
    GENERAL_ONLY({
      int32_t e = concat(texts);
      FAIL_IF(e);
    })
  CASE(CompareText)
    GENERAL_ONLY({
      int cmp = texts[texts.size() - 2].compare(texts.back());
      texts.pop_back();
      texts.pop_back();
      PUSH(vb::boolean(relation(cmp, ip->compare)));
    })
  CASE(CompareMixed)
    GENERAL_ONLY({
      int cmp = compareMixed(top, texts.back());
      texts.pop_back();
      if (!(ip->compare & 0x80)) cmp = -cmp;  // the text was on the left
      top = vb::boolean(relation(cmp, ip->compare));
    })
  CASE(StoreDouble)
    GENERAL_ONLY({
      *ip->field = top;
      top = *sp--;
    })
  CASE(StoreInt)
    GENERAL_ONLY({
      int32_t e = 0;
      int32_t v = vb::toLong(top, e);
      FAIL_IF(e);
      *ip->intField = v;
      top = *sp--;
    })
  CASE(StoreName)
    GENERAL_ONLY({
      int32_t e = storeName(variables, p.keys[ip->index], top);
      FAIL_IF(e);
      top = *sp--;
    })
#undef PUSH
#undef FAIL_IF
#undef CHECKED
#undef BINARY
#undef PAIR
#undef GENERAL_ONLY
#undef NEXT
#undef CASE

fault:
  return {0, error, static_cast<int32_t>(ip - code)};
innerFault:
  // Only the inner operations of fused pairs come here; they fail as overflow.
  return {0, err::Overflow, -1 - ip->index};
}

template <bool General>
const void* const* handlers() noexcept {
  Program none;
  Variables variables;
  run<General>(none, variables);
  return handlerTable<General>;
}

}  // namespace

void prepare(Program& p) noexcept {
  static const void* const* const plain = handlers<false>();
  static const void* const* const general = handlers<true>();
  const void* const* table = p.plain ? plain : general;
  for (Instr& in : p.code) in.handler = table[static_cast<int>(in.op)];
}

// Both are tail calls: a sampled formula costs one call into the loop.
Evaluation execute(const Program& p, Variables& variables) noexcept {
  if (p.plain) [[likely]]
    return run<false>(p, variables);
  return run<true>(p, variables);
}

RuntimeError describeFault(const Program& p, int32_t number, int32_t faultAt) {
  if (faultAt < 0) {
    const SourcePos& pos = p.inner[static_cast<size_t>(-1 - faultAt)];
    return RuntimeError(number, scriptErrorDescription(number), pos.line, pos.column);
  }
  std::string_view name;
  const Instr& in = p.code[static_cast<size_t>(faultAt)];
  if ((in.op == Op::Fail || in.op == Op::LoadName) && in.index >= 0) name = p.names[static_cast<size_t>(in.index)];
  const SourcePos& pos = p.positions[static_cast<size_t>(faultAt)];
  return RuntimeError(number, scriptErrorDescription(number, name), pos.line, pos.column);
}

}  // namespace orvane
