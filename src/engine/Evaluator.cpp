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

// A number as text: a Boolean as True or False, a Single to seven digits.
std::string numberText(double value, Subtype kind) {
  switch (kind) {
    case Subtype::Boolean: return value != 0 ? "True" : "False";
    case Subtype::Single: return formatSingle(static_cast<float>(value));
    default: return formatGeneral(value);
  }
}

int32_t pushNumberText(Texts& texts, double value, Subtype kind) noexcept {
  try {
    texts.push_back(numberText(value, kind));
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

int32_t storeName(Variables& variables, const std::string& key, double value, Subtype kind) noexcept {
  try {
    variables.assign(*variables.create(key), value, kind);
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
// only, with no Single among them (the sampling loops), and keeps no kinds; the general
// one adds texts, late names, statements and the kinds of numbers.
template <bool General>
Evaluation run(const Program& p, Variables& variables) noexcept {
  const Instr* const code = p.code.data();
  const Instr* ip = code;
  int32_t error = 0;
  // The stack lives on the native stack unless the program is too deep for it. The
  // general loop keeps each number's kind beside it; the plain one has no use for kinds.
  double local[PlainStackDepth];
  Subtype localKinds[General ? PlainStackDepth : 1];
  std::unique_ptr<double[]> heap;
  std::unique_ptr<Subtype[]> heapKinds;
  double* stack = local;
  Subtype* kinds = localKinds;
  if (General && p.maxDepth + 2 > PlainStackDepth) {
    size_t depth = static_cast<size_t>(p.maxDepth) + 2;
    heap.reset(new (std::nothrow) double[depth]);
    heapKinds.reset(new (std::nothrow) Subtype[depth]);
    if (!heap || !heapKinds) return {0, OutOfMemory, 0};
    stack = heap.get();
    kinds = heapKinds.get();
  }
  Texts texts;
  double* sp = stack;  // the entries below the top; the top itself lives in `top`
  Subtype* kp = kinds;  // their kinds, likewise
  double top = 0;
  Subtype kind = Subtype::Double;
  double kept = 0;     // the second of a Sin/Cos pair, until PushKept

#define PUSH(v, k)           \
  do {                       \
    *++sp = top;             \
    top = (v);               \
    if constexpr (General) { \
      *++kp = kind;          \
      kind = (k);            \
    }                        \
  } while (0)
#define POP                             \
  do {                                  \
    top = *sp--;                        \
    if constexpr (General) kind = *kp--; \
  } while (0)
// The top becomes a number of kind `k`, promoted past an overflow or rounded to single
// precision as that kind requires.
#define KIND(k)                  \
  if constexpr (General) {       \
    kind = (k);                  \
    top = vb::settle(top, kind); \
  }
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
#define UNARY(expr, op)             \
  {                                 \
    top = (expr);                   \
    KIND(resultType(op, kind));     \
    NEXT;                           \
  }
#define CHECKED(expr, k)  \
  {                       \
    int32_t e = 0;        \
    top = (expr);         \
    FAIL_IF(e);           \
    KIND(k);              \
    NEXT;                 \
  }
#define BINARY(fn, op)                                           \
  {                                                              \
    int32_t e = 0;                                               \
    double a = *sp--;                                            \
    if constexpr (General) kind = resultType(op, *kp--, kind);   \
    top = fn(a, top, e);                                         \
    FAIL_IF(e);                                                  \
    if constexpr (General) top = vb::settle(top, kind);          \
    NEXT;                                                        \
  }
#define COMPARE(rel)                                  \
  {                                                   \
    double a = *sp--;                                 \
    if constexpr (General) {                          \
      vb::alignForComparison(a, *kp--, top, kind);    \
      kind = Subtype::Boolean;                        \
    }                                                 \
    top = vb::boolean(a rel top);                     \
    NEXT;                                             \
  }
// An inner operation and the outer one that takes its result, both failing as overflow.
// Fused instructions compute Doubles only.
#define PAIR(innerExpr, outerExpr)                \
  {                                               \
    double inner = (innerExpr);                   \
    double outer = (outerExpr);                   \
    if (!std::isfinite(outer)) [[unlikely]] {     \
      if (!std::isfinite(inner)) goto innerFault; \
      error = err::Overflow;                      \
      goto fault;                                 \
    }                                             \
    top = outer;                                  \
    if constexpr (General) kind = Subtype::Double; \
    NEXT;                                         \
  }
#define GENERAL_ONLY(body)     \
  if constexpr (General) {     \
    body                       \
  } else {                     \
    __builtin_unreachable();   \
  }                            \
  NEXT;

  constexpr Subtype Double = Subtype::Double;
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
  CASE(Const) PUSH(ip->value, ip->type); NEXT;
  CASE(LoadDouble) PUSH(*ip->field, ip->type); NEXT;
  CASE(LoadInt) PUSH(*ip->intField, Subtype::Long); NEXT;

  CASE(Neg) UNARY(-top, Op::Neg);
  CASE(Not) CHECKED(vb::bitNot(top, e), resultType(Op::Not, kind));
  CASE(Square) CHECKED(vb::checked(top * top, e), Double);
  CASE(Cube) CHECKED(vb::checked(top * top * top, e), Double);
  CASE(Abs) UNARY(vb::abs(top), Op::Abs);
  CASE(Atn) UNARY(vb::atn(top), Op::Atn);
  CASE(Cos) UNARY(vb::cos(top), Op::Cos);
  CASE(Exp) CHECKED(vb::exp(top, e), Double);
  CASE(Fix) UNARY(vb::fix(top), Op::Fix);
  CASE(Int) UNARY(vb::intPart(top), Op::Int);
  CASE(Log) CHECKED(vb::log(top, e), Double);
  CASE(Round) UNARY(vb::round(top), Op::Round);
  CASE(Sgn) UNARY(vb::sgn(top), Op::Sgn);
  CASE(Sin) UNARY(vb::sin(top), Op::Sin);
  CASE(Sqr) CHECKED(vb::sqr(top, e), Double);
  CASE(Tan) CHECKED(vb::tan(top, e), Double);
  CASE(CDbl) UNARY(top, Op::CDbl);
  CASE(CInt) CHECKED(vb::cint(top, e), Subtype::Integer);
  CASE(CLng) CHECKED(vb::clng(top, e), Subtype::Long);
  CASE(CSng) CHECKED(vb::csng(top, e), Subtype::Single);
  CASE(CBool) UNARY(vb::cbool(top), Op::CBool);
  CASE(Call) CHECKED(ip->call.function(*ip->call.self, top, e), Double);

  CASE(Add) BINARY(vb::add, Op::Add);
  CASE(Sub) BINARY(vb::sub, Op::Sub);
  CASE(Mul) BINARY(vb::mul, Op::Mul);
  CASE(Div) BINARY(vb::div, Op::Div);
  CASE(Pow) BINARY(vb::pow, Op::Pow);
  CASE(IntDiv) BINARY(vb::intDiv, Op::IntDiv);
  CASE(Mod) BINARY(vb::mod, Op::Mod);
  CASE(Eq) COMPARE(==);
  CASE(Ne) COMPARE(!=);
  CASE(Lt) COMPARE(<);
  CASE(Gt) COMPARE(>);
  CASE(Le) COMPARE(<=);
  CASE(Ge) COMPARE(>=);
  CASE(And) BINARY(vb::bitAnd, Op::And);
  CASE(Or) BINARY(vb::bitOr, Op::Or);
  CASE(Xor) BINARY(vb::bitXor, Op::Xor);
  CASE(Eqv) BINARY(vb::bitEqv, Op::Eqv);
  CASE(Imp) BINARY(vb::bitImp, Op::Imp);
  CASE(Round2) BINARY(vb::round, Op::Round2);

  CASE(AddConst) CHECKED(vb::add(top, ip->value, e), Double);
  CASE(MulConst) CHECKED(vb::mul(top, ip->value, e), Double);
  CASE(DivConst) CHECKED(vb::div(top, ip->value, e), Double);
  CASE(PowConst) CHECKED(vb::pow(top, ip->value, e), Double);
  CASE(AddVar) CHECKED(vb::add(top, *ip->field, e), Double);
  CASE(SubVar) CHECKED(vb::sub(top, *ip->field, e), Double);
  CASE(MulVar) CHECKED(vb::mul(top, *ip->field, e), Double);
  CASE(DivVar) CHECKED(vb::div(top, *ip->field, e), Double);
  CASE(PowVar) CHECKED(vb::pow(top, *ip->field, e), Double);
  CASE(VarAddConst) PUSH(0, Double); CHECKED(vb::add(*ip->withConst.field, ip->withConst.value, e), Double);
  CASE(VarMulConst) PUSH(0, Double); CHECKED(vb::mul(*ip->withConst.field, ip->withConst.value, e), Double);
  CASE(ConstSubVar) PUSH(0, Double); CHECKED(vb::sub(ip->withConst.value, *ip->withConst.field, e), Double);
  CASE(VarAddVar) PUSH(0, Double); CHECKED(vb::add(*ip->fields.left, *ip->fields.right, e), Double);
  CASE(VarSubVar) PUSH(0, Double); CHECKED(vb::sub(*ip->fields.left, *ip->fields.right, e), Double);
  CASE(VarMulVar) PUSH(0, Double); CHECKED(vb::mul(*ip->fields.left, *ip->fields.right, e), Double);

  CASE(VarDivConst) PUSH(0, Double); CHECKED(vb::div(*ip->withConst.field, ip->withConst.value, e), Double);
  CASE(ConstDivVar) PUSH(0, Double); CHECKED(vb::div(ip->withConst.value, *ip->withConst.field, e), Double);
  CASE(VarSquare) PUSH(0, Double); CHECKED(vb::checked(*ip->withConst.field * *ip->withConst.field, e), Double);
  CASE(VarCube) {
    PUSH(0, Double);
    double v = *ip->withConst.field;
    CHECKED(vb::checked(v * v * v, e), Double);
  }
  // The fused pairs test only their result: a non-finite operand never gives a finite
  // sum or product, so a finite result means the inner operation succeeded too.
  CASE(MulVarAddConst) PAIR(*ip->withConst.field + ip->withConst.value, top * inner);
  CASE(AddVarMulConst) PAIR(*ip->withConst.field * ip->withConst.value, top + inner);
  CASE(SubVarMulConst) PAIR(*ip->withConst.field * ip->withConst.value, top - inner);
  CASE(VarMulConstAddConst) PUSH(0, Double); PAIR(*ip->withConst.field * ip->withConst.value, inner + ip->withConst.addend);
  CASE(VarMulVarAddConst) PUSH(0, Double); PAIR(*ip->fields.left * *ip->fields.right, inner + ip->fields.addend);

  CASE(AbsVar) PUSH(vb::abs(*ip->field), Double); NEXT;
  CASE(AtnVar) PUSH(vb::atn(*ip->field), Double); NEXT;
  CASE(CosVar) PUSH(vb::cos(*ip->field), Double); NEXT;
  CASE(SinVar) PUSH(vb::sin(*ip->field), Double); NEXT;
  CASE(ExpVar) PUSH(0, Double); CHECKED(vb::exp(*ip->field, e), Double);
  CASE(LogVar) PUSH(0, Double); CHECKED(vb::log(*ip->field, e), Double);
  CASE(SqrVar) PUSH(0, Double); CHECKED(vb::sqr(*ip->field, e), Double);
  CASE(TanVar) PUSH(0, Double); CHECKED(vb::tan(*ip->field, e), Double);
  CASE(SinKeepCos) PUSH(0, Double); vb::sinCos(*ip->field, top, kept); NEXT;
  CASE(CosKeepSin) PUSH(0, Double); vb::sinCos(*ip->field, kept, top); NEXT;
  CASE(PushKept) PUSH(kept, Double); NEXT;
  CASE(CallVar) PUSH(0, Double); CHECKED(ip->call.function(*ip->call.self, *ip->call.argument, e), Double);

  CASE(Fail)
    error = ip->error;
    goto fault;
  CASE(Return)
    return {top, 0, 0};

  CASE(LoadVar)
    GENERAL_ONLY({ PUSH(ip->variable->value, ip->variable->type); })
  CASE(LoadName)
    GENERAL_ONLY({
      const Variable* v = variables.find(p.keys[ip->index]);
      if (!v) {
        error = err::UndefinedVariable;
        goto fault;
      }
      PUSH(v->value, v->type);
    })
  CASE(PushText)
    GENERAL_ONLY({
      int32_t e = pushText(texts, p.texts[ip->index]);
      FAIL_IF(e);
    })
  CASE(NumberToText)
    GENERAL_ONLY({
      int32_t e = pushNumberText(texts, top, kind);
      FAIL_IF(e);
      POP;
    })
  CASE(TextToNumber)
    GENERAL_ONLY({
      double v = 0;
      int32_t e = popNumber(texts, v);
      FAIL_IF(e);
      if (ip->compare) {  // the left operand of +, beneath the right one
        *++sp = v;
        *++kp = Double;
      } else {
        PUSH(v, Double);
      }
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
      PUSH(vb::boolean(relation(cmp, ip->compare)), Subtype::Boolean);
    })
  CASE(CompareMixed)
    GENERAL_ONLY({
      int cmp = compareMixed(top, texts.back());
      texts.pop_back();
      if (!(ip->compare & 0x80)) cmp = -cmp;  // the text was on the left
      top = vb::boolean(relation(cmp, ip->compare));
      kind = Subtype::Boolean;
    })
  CASE(StoreDouble)
    GENERAL_ONLY({
      *ip->field = top;
      POP;
    })
  CASE(StoreInt)
    GENERAL_ONLY({
      int32_t e = 0;
      int32_t v = vb::toLong(top, e);
      FAIL_IF(e);
      *ip->intField = v;
      POP;
    })
  CASE(StoreVar)
    GENERAL_ONLY({
      variables.assign(*ip->variable, top, kind);
      POP;
    })
  CASE(StoreName)
    GENERAL_ONLY({
      int32_t e = storeName(variables, p.keys[ip->index], top, kind);
      FAIL_IF(e);
      POP;
    })
#undef PUSH
#undef POP
#undef KIND
#undef FAIL_IF
#undef UNARY
#undef CHECKED
#undef BINARY
#undef COMPARE
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
