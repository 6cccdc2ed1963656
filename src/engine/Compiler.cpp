#include "engine/Compiler.h"

#include <algorithm>
#include <unordered_map>

#include "engine/Evaluator.h"
#include "engine/Lexer.h"
#include "engine/VbMath.h"
#include "platform/RuntimeError.h"

namespace orvane {

namespace {

// Binding powers, loosest first, in the language's order of operations: negation binds
// tighter than ^, so -2^2 is 4 and 2^-2 is 0.25.
enum Prec : int {
  Lowest = 0, PImp, PEqv, PXor, POr, PAnd, PNot, PCompare, PConcat, PAdditive, PMod,
  PIntDiv, PMultiplicative, PPower, PUnary, PPrimary,
};

// Deep enough for any sane formula, shallow enough for the native stack.
constexpr int MaxNesting = 1000;

int infixPrec(Tok t) {
  switch (t) {
    case Tok::Imp: return PImp;
    case Tok::Eqv: return PEqv;
    case Tok::Xor: return PXor;
    case Tok::Or: return POr;
    case Tok::And: return PAnd;
    case Tok::Eq: case Tok::Ne: case Tok::Lt: case Tok::Gt: case Tok::Le: case Tok::Ge:
      return PCompare;
    case Tok::Amp: return PConcat;
    case Tok::Plus: case Tok::Minus: return PAdditive;
    case Tok::Mod: return PMod;
    case Tok::Backslash: return PIntDiv;
    case Tok::Star: case Tok::Slash: return PMultiplicative;
    case Tok::Caret: return PPower;
    default: return -1;
  }
}

Op binaryOp(Tok t) {
  switch (t) {
    case Tok::Imp: return Op::Imp;
    case Tok::Eqv: return Op::Eqv;
    case Tok::Xor: return Op::Xor;
    case Tok::Or: return Op::Or;
    case Tok::And: return Op::And;
    case Tok::Eq: return Op::Eq;
    case Tok::Ne: return Op::Ne;
    case Tok::Lt: return Op::Lt;
    case Tok::Gt: return Op::Gt;
    case Tok::Le: return Op::Le;
    case Tok::Ge: return Op::Ge;
    case Tok::Plus: return Op::Add;
    case Tok::Minus: return Op::Sub;
    case Tok::Mod: return Op::Mod;
    case Tok::Backslash: return Op::IntDiv;
    case Tok::Star: return Op::Mul;
    case Tok::Slash: return Op::Div;
    default: return Op::Pow;
  }
}

struct Builtin {
  std::string_view name;
  Op op;
};
constexpr Builtin builtins[] = {
    {"abs", Op::Abs},   {"atn", Op::Atn},   {"cos", Op::Cos},   {"exp", Op::Exp},
    {"fix", Op::Fix},   {"int", Op::Int},   {"log", Op::Log},   {"round", Op::Round},
    {"sgn", Op::Sgn},   {"sin", Op::Sin},   {"sqr", Op::Sqr},   {"tan", Op::Tan},
    {"cdbl", Op::CDbl}, {"cint", Op::CInt}, {"clng", Op::CLng}, {"csng", Op::CSng},
    {"cbool", Op::CBool},
};

const Builtin* findBuiltin(std::string_view lower) {
  for (const Builtin& b : builtins)
    if (b.name == lower) return &b;
  return nullptr;
}

// A constant with its kind of number.
struct Number {
  double value;
  Subtype type;
};

// Only operations that can be undone at compile time are folded; one that would raise
// an error is left for run time so the error keeps its number and position. The result
// has the kind, and the rounding, the operation gives it at run time.
bool foldUnary(Op op, Number a, Number& r) {
  int32_t e = 0;
  double v;
  switch (op) {
    case Op::Neg: v = -a.value; break;
    case Op::Not: v = vb::bitNot(a.value, e); break;
    case Op::Abs: v = vb::abs(a.value); break;
    case Op::Atn: v = vb::atn(a.value); break;
    case Op::Cos: v = vb::cos(a.value); break;
    case Op::Exp: v = vb::exp(a.value, e); break;
    case Op::Fix: v = vb::fix(a.value); break;
    case Op::Int: v = vb::intPart(a.value); break;
    case Op::Log: v = vb::log(a.value, e); break;
    case Op::Round: v = vb::round(a.value); break;
    case Op::Sgn: v = vb::sgn(a.value); break;
    case Op::Sin: v = vb::sin(a.value); break;
    case Op::Sqr: v = vb::sqr(a.value, e); break;
    case Op::Tan: v = vb::tan(a.value, e); break;
    case Op::CDbl: v = a.value; break;
    case Op::CInt: v = vb::cint(a.value, e); break;
    case Op::CLng: v = vb::clng(a.value, e); break;
    case Op::CSng: v = vb::csng(a.value, e); break;
    case Op::CBool: v = vb::cbool(a.value); break;
    default: return false;
  }
  if (e) return false;
  r.type = resultType(op, a.type);
  r.value = vb::settle(v, r.type);
  return true;
}

bool foldBinary(Op op, Number a, Number b, Number& r) {
  int32_t e = 0;
  double v;
  double x = a.value, y = b.value;
  vb::alignForComparison(x, a.type, y, b.type);  // used by the comparisons only
  switch (op) {
    case Op::Add: v = vb::add(a.value, b.value, e); break;
    case Op::Sub: v = vb::sub(a.value, b.value, e); break;
    case Op::Mul: v = vb::mul(a.value, b.value, e); break;
    case Op::Div: v = vb::div(a.value, b.value, e); break;
    case Op::Pow: v = vb::pow(a.value, b.value, e); break;
    case Op::IntDiv: v = vb::intDiv(a.value, b.value, e); break;
    case Op::Mod: v = vb::mod(a.value, b.value, e); break;
    case Op::Eq: v = vb::boolean(x == y); break;
    case Op::Ne: v = vb::boolean(x != y); break;
    case Op::Lt: v = vb::boolean(x < y); break;
    case Op::Gt: v = vb::boolean(x > y); break;
    case Op::Le: v = vb::boolean(x <= y); break;
    case Op::Ge: v = vb::boolean(x >= y); break;
    case Op::And: v = vb::bitAnd(a.value, b.value, e); break;
    case Op::Or: v = vb::bitOr(a.value, b.value, e); break;
    case Op::Xor: v = vb::bitXor(a.value, b.value, e); break;
    case Op::Eqv: v = vb::bitEqv(a.value, b.value, e); break;
    case Op::Imp: v = vb::bitImp(a.value, b.value, e); break;
    case Op::Round2: v = vb::round(a.value, b.value, e); break;
    default: return false;
  }
  if (e) return false;
  r.type = resultType(op, a.type, b.type);
  r.value = vb::settle(v, r.type);
  return true;
}

// The operator with its right operand held in the instruction, if there is one.
bool fusedOp(Op op, bool constant, Op& fused) {
  switch (op) {
    case Op::Add: fused = constant ? Op::AddConst : Op::AddVar; return true;
    case Op::Sub: fused = constant ? Op::AddConst : Op::SubVar; return true;  // negated below
    case Op::Mul: fused = constant ? Op::MulConst : Op::MulVar; return true;
    case Op::Div: fused = constant ? Op::DivConst : Op::DivVar; return true;
    case Op::Pow: fused = constant ? Op::PowConst : Op::PowVar; return true;
    default: return false;
  }
}

// Two single-instruction operands (a field and a constant, or two fields) and their
// operator become one instruction that pushes the result: x+1, 2*x, x*y, x/2, 1/x, x^2.
// Sums and products are commutative bit for bit, and a - c is exactly a + (-c).
bool fusePair(Op op, Instr& left, const Instr& right) {
  bool leftVar = left.op == Op::LoadDouble, rightVar = right.op == Op::LoadDouble;
  bool leftConst = left.op == Op::Const, rightConst = right.op == Op::Const;
  Instr in;
  if (leftVar && rightVar && (op == Op::Add || op == Op::Sub || op == Op::Mul)) {
    in.op = op == Op::Add ? Op::VarAddVar : op == Op::Sub ? Op::VarSubVar : Op::VarMulVar;
    in.fields = {left.field, right.field, 0};
  } else if (leftVar && rightConst && (op == Op::Add || op == Op::Sub || op == Op::Mul)) {
    in.op = op == Op::Mul ? Op::VarMulConst : Op::VarAddConst;
    in.withConst = {left.field, op == Op::Sub ? -right.value : right.value, 0};
  } else if (leftVar && rightConst && op == Op::Div) {
    in.op = Op::VarDivConst;
    in.withConst = {left.field, right.value, 0};
  } else if (leftConst && rightVar && op == Op::Div) {
    in.op = Op::ConstDivVar;
    in.withConst = {right.field, left.value, 0};
  } else if (leftVar && rightConst && op == Op::Pow && (right.value == 2 || right.value == 3)) {
    in.op = right.value == 2 ? Op::VarSquare : Op::VarCube;
    in.withConst = {left.field, 0, 0};
  } else if (leftConst && rightVar && (op == Op::Add || op == Op::Sub || op == Op::Mul)) {
    in.op = op == Op::Add ? Op::VarAddConst : op == Op::Sub ? Op::ConstSubVar : Op::VarMulConst;
    in.withConst = {right.field, left.value, 0};
  } else {
    return false;
  }
  left = in;
  return true;
}

// The built-in that reads its argument straight from a field, if there is one.
bool fieldForm(Op op, Op& fused) {
  switch (op) {
    case Op::Abs: fused = Op::AbsVar; return true;
    case Op::Atn: fused = Op::AtnVar; return true;
    case Op::Cos: fused = Op::CosVar; return true;
    case Op::Exp: fused = Op::ExpVar; return true;
    case Op::Log: fused = Op::LogVar; return true;
    case Op::Sin: fused = Op::SinVar; return true;
    case Op::Sqr: fused = Op::SqrVar; return true;
    case Op::Tan: fused = Op::TanVar; return true;
    default: return false;
  }
}

enum class Type : uint8_t { Number, Text };

struct Operand {
  size_t start;  // first instruction of the operand's code
  Type type;
  Subtype subtype = Subtype::Double;  // a number's kind, as far as it is known here
};

class Parser {
 public:
  Parser(std::string_view text, const Scope& scope, CompileOptions options)
      : lexer_(text), scope_(scope), options_(options), program_(std::make_unique<Program>()) {
    program_->isStatement = options.statements;
    // Room for the instructions a text of this length usually needs, so that a long
    // formula is not copied again and again as it grows.
    size_t room = text.size() / 2 + 2;
    program_->code.reserve(room);
    program_->positions.reserve(room);
    advance();
  }

  std::unique_ptr<Program> run() {
    if (options_.statements) {
      for (;;) {
        while (cur_.kind == Tok::Newline || cur_.kind == Tok::Colon) advance();
        if (cur_.kind == Tok::End) break;
        statement();
        if (cur_.kind != Tok::Newline && cur_.kind != Tok::Colon && cur_.kind != Tok::End)
          failAt(cur_, err::ExpectedEndOfStatement);
      }
    } else {
      Token first = cur_;
      Operand value = parse(Lowest);
      if (cur_.kind != Tok::End) failAt(cur_, err::ExpectedEndOfStatement);
      toNumber(value, first);
    }
    emit(Op::Return, cur_, 0);
    if (options_.optimize) pairSinCos();
    program_->plain = !singles_ && program_->maxTextDepth == 0 && !program_->lateBound && !options_.statements &&
                      program_->maxDepth + 2 <= PlainStackDepth;
    return std::move(program_);
  }

 private:
  Token advance() {
    prev_ = cur_;
    cur_ = lexer_.next();
    return prev_;
  }

  [[noreturn]] void fail(int32_t number, const Token& at, std::string_view name = {}) {
    throw RuntimeError(number, scriptErrorDescription(number, name), at.line, at.column);
  }

  // A lexical error token reports its own number; any other token the given one.
  [[noreturn]] void failAt(const Token& at, int32_t number) {
    fail(at.kind == Tok::Error ? at.error : number, at);
  }

  size_t emit(Op op, const Token& at, int numbers, int texts = 0) {
    Instr in;
    in.op = op;
    program_->code.push_back(in);
    program_->positions.push_back({at.line, at.column});
    depth_ += numbers;
    textDepth_ += texts;
    program_->maxDepth = std::max(program_->maxDepth, depth_);
    program_->maxTextDepth = std::max(program_->maxTextDepth, textDepth_);
    return program_->code.size() - 1;
  }

  Instr& last() { return program_->code.back(); }

  int32_t addName(std::string_view typed) {
    program_->names.emplace_back(typed);
    program_->keys.push_back(lowerName(typed));
    return static_cast<int32_t>(program_->names.size() - 1);
  }

  // A number of kind `type`; a Single anywhere means the kinds of numbers can change
  // values, so the program runs where numbers carry their kinds.
  Operand number(size_t start, Subtype type) {
    if (type == Subtype::Single) singles_ = true;
    return {start, Type::Number, type};
  }

  Operand pushConst(Number constant, const Token& at) {
    size_t i = emit(Op::Const, at, 1);
    last().value = constant.value;
    last().type = constant.type;
    return number(i, constant.type);
  }

  Operand pushField(const Binding& b, const Token& at) {
    size_t i = emit(b.kind == Binding::Kind::Int32 ? Op::LoadInt : Op::LoadDouble, at, 1);
    if (b.kind == Binding::Kind::Int32) {
      last().intField = b.intField;
      return number(i, Subtype::Long);
    }
    last().field = b.field;
    return number(i, Subtype::Double);
  }

  // A formula reads a variable as the kind of number it holds now (the engine compiles
  // the formula again when a statement changes that kind); a statement line, which may
  // change it itself, reads the kind when it runs.
  Operand pushVariable(Variable* v, const Token& at) {
    if (options_.statements) {
      size_t i = emit(Op::LoadVar, at, 1);
      last().variable = v;
      return number(i, Subtype::Variant);
    }
    size_t i = emit(Op::LoadDouble, at, 1);
    last().field = &v->value;
    last().type = v->type;
    program_->bindsVariables = true;
    return number(i, v->type);
  }

  // An instruction that raises `number` when reached, after its `popped` arguments.
  Operand pushFail(int32_t number, const Token& at, std::string_view name, size_t start, int popped) {
    emit(Op::Fail, at, 1 - popped);
    last().index = addName(name);
    last().error = number;
    return {start, Type::Number, Subtype::Variant};
  }

  void toNumber(Operand& o, const Token& at) {
    if (o.type == Type::Text) {
      emit(Op::TextToNumber, at, 1, -1);
      o.type = Type::Number;
      o.subtype = Subtype::Double;
    }
  }

  void toText(Operand& o, const Token& at) {
    if (o.type == Type::Number) {
      emit(Op::NumberToText, at, -1, 1);
      o.type = Type::Text;
    }
  }

  bool isSingleConst(const Operand& o) const {
    return o.start + 1 == program_->code.size() && program_->code[o.start].op == Op::Const;
  }

  bool isSingleField(const Operand& o) const {
    return o.start + 1 == program_->code.size() && program_->code[o.start].op == Op::LoadDouble;
  }

  static Number constant(const Instr& in) { return {in.value, in.type}; }

  Operand unary(Op op, Operand o, const Token& at) {
    Subtype type = resultType(op, o.subtype);
    Number r;
    if (options_.optimize && isSingleConst(o) && foldUnary(op, constant(last()), r)) {
      last().value = r.value;
      last().type = r.type;
      return number(o.start, r.type);
    }
    Op fused;
    if (options_.optimize && type == Subtype::Double && isSingleField(o) && fieldForm(op, fused)) {
      last().op = fused;  // the field stays where LoadDouble held it
      program_->positions.back() = {at.line, at.column};
      return number(o.start, type);
    }
    emit(op, at, 0);
    return number(o.start, type);
  }

  // Fused instructions compute with plain doubles, so only a Double result is fused; a
  // field of the math object is a Double, as is a variable that holds one.
  Operand binary(Op op, Operand left, Operand right, const Token& at) {
    auto& code = program_->code;
    Subtype type = resultType(op, left.subtype, right.subtype);
    Operand result = number(left.start, type);
    if (options_.optimize && right.start + 1 == code.size()) {
      Number r;
      if (left.start + 2 == code.size() && code[left.start].op == Op::Const && code[right.start].op == Op::Const &&
          foldBinary(op, constant(code[left.start]), constant(code[right.start]), r)) {
        code.pop_back();
        program_->positions.pop_back();
        --depth_;
        code.back().value = r.value;
        code.back().type = r.type;
        return number(left.start, r.type);
      }
      if (type != Subtype::Double) {
        emit(op, at, -1);
        return result;
      }
      if (left.start + 2 == code.size() && fusePair(op, code[left.start], code.back())) {
        code.pop_back();
        program_->positions.pop_back();
        program_->positions.back() = {at.line, at.column};
        --depth_;
        return result;
      }
      if (fuseWithPair(op, code.back(), {at.line, at.column})) {
        --depth_;
        return result;
      }
      if (left.start + 2 == code.size() && (op == Op::Add || op == Op::Sub) && code.back().op == Op::Const) {
        double addend = op == Op::Sub ? -code.back().value : code.back().value;  // exactly a + (-c)
        if (fuseAddend(code[left.start], addend, {at.line, at.column})) {
          code.pop_back();
          program_->positions.pop_back();
          --depth_;
          return result;
        }
      }
      Instr& in = code.back();
      Op fused;
      bool constant = in.op == Op::Const;
      if ((constant || in.op == Op::LoadDouble) && fusedOp(op, constant, fused)) {
        in.op = fused;
        if (op == Op::Sub && constant) in.value = -in.value;  // a - c is exactly a + (-c)
        if (fused == Op::PowConst && in.value == 2) in.op = Op::Square;
        if (fused == Op::PowConst && in.value == 3) in.op = Op::Cube;
        program_->positions.back() = {at.line, at.column};
        --depth_;
        return result;
      }
    }
    emit(op, at, -1);
    return result;
  }

  // Sin(x) and Cos(x) in one formula share one computation: the first computes both and
  // keeps the other for the second. Only across code that cannot change the field (no
  // calls, no stores) and only for the first such pair. One pass: for each field, the
  // first Sin or Cos since the last call or store waits for its partner.
  void pairSinCos() {
    auto& code = program_->code;
    std::unordered_map<const double*, size_t> waiting;
    for (size_t j = 0; j < code.size(); ++j) {
      Instr& in = code[j];
      if (in.op == Op::Call || in.op == Op::CallVar || in.op == Op::StoreDouble || in.op == Op::StoreInt ||
          in.op == Op::StoreVar || in.op == Op::StoreName) {
        waiting.clear();
        continue;
      }
      if (in.op != Op::SinVar && in.op != Op::CosVar) continue;
      auto [it, first] = waiting.try_emplace(in.field, j);
      Instr& partner = code[it->second];
      if (first || partner.op == in.op) continue;
      partner.op = partner.op == Op::SinVar ? Op::SinKeepCos : Op::CosKeepSin;
      in.op = Op::PushKept;
      return;
    }
  }

  // a*x+b, x*y+c: the constant joins the pushed product, which is the last instruction
  // but one. The product keeps its position for its errors.
  bool fuseAddend(Instr& product, double addend, SourcePos at) {
    if (product.op == Op::VarMulConst) {
      product.op = Op::VarMulConstAddConst;
      product.withConst.addend = addend;
    } else if (product.op == Op::VarMulVar) {
      product.op = Op::VarMulVarAddConst;
      product.fields.addend = addend;
    } else {
      return false;
    }
    auto& positions = program_->positions;
    product.index = static_cast<int32_t>(program_->inner.size());
    program_->inner.push_back(positions[positions.size() - 2]);
    positions[positions.size() - 2] = at;
    return true;
  }

  // top * (x+c), top + x*c, top - x*c: the operator takes the pushed pair as its right
  // operand. The pair's own operator keeps its position for its errors.
  bool fuseWithPair(Op op, Instr& right, SourcePos at) {
    Op fused;
    if (op == Op::Mul && right.op == Op::VarAddConst)
      fused = Op::MulVarAddConst;
    else if (op == Op::Add && right.op == Op::VarMulConst)
      fused = Op::AddVarMulConst;
    else if (op == Op::Sub && right.op == Op::VarMulConst)
      fused = Op::SubVarMulConst;
    else
      return false;
    right.op = fused;
    right.index = static_cast<int32_t>(program_->inner.size());
    program_->inner.push_back(program_->positions.back());
    program_->positions.back() = at;
    return true;
  }

  Operand parse(int prec) {
    if (++nesting_ > MaxNesting) fail(err::OutOfStack, cur_);
    Operand left = prefix(prec);
    for (;;) {
      int p = infixPrec(cur_.kind);
      if (p < 0 || p < prec) break;
      left = infix(advance(), p, left);
    }
    --nesting_;
    return left;
  }

  Operand prefix(int prec) {
    Token t = advance();
    switch (t.kind) {
      case Tok::Number: return pushConst({t.number, t.type}, t);
      case Tok::True: return pushConst({vb::True, Subtype::Boolean}, t);
      case Tok::False: return pushConst({vb::False, Subtype::Boolean}, t);
      case Tok::Text: {
        size_t i = emit(Op::PushText, t, 0, 1);
        program_->texts.push_back(unquote(t.text));
        last().index = static_cast<int32_t>(program_->texts.size() - 1);
        return {i, Type::Text};
      }
      case Tok::LParen: {
        Operand o = parse(Lowest);
        if (cur_.kind != Tok::RParen) failAt(cur_, err::ExpectedRParen);
        advance();
        return o;
      }
      case Tok::Minus: case Tok::Plus: {
        // The sign takes only the operand that follows: -2^2 is (-2)^2.
        Operand o = parse(std::max(prec, int(PUnary)));
        toNumber(o, t);
        return t.kind == Tok::Minus ? unary(Op::Neg, o, t) : o;
      }
      case Tok::Not: {
        Operand o = parse(std::max(prec, int(PCompare)));
        toNumber(o, t);
        return unary(Op::Not, o, t);
      }
      case Tok::Name: return name(t);
      default: failAt(t, err::ExpectedExpression);
    }
  }

  static std::string unquote(std::string_view raw) {
    std::string s;
    for (size_t i = 0; i < raw.size(); ++i) {
      s += raw[i];
      if (raw[i] == '"') ++i;  // "" inside a text is one quote
    }
    return s;
  }

  Operand infix(const Token& at, int prec, Operand left) {
    Tok kind = at.kind;
    if (kind == Tok::Amp) {
      toText(left, at);
      Operand right = parse(prec + 1);
      toText(right, at);
      emit(Op::Concat, at, 0, -1);
      return {left.start, Type::Text};
    }
    bool deferred = kind == Tok::Plus || prec == PCompare;  // the result type depends on both sides
    if (!deferred) toNumber(left, at);
    Operand right = parse(prec + 1);
    if (deferred && left.type == Type::Text && right.type == Type::Text) {
      if (kind == Tok::Plus) {
        emit(Op::Concat, at, 0, -1);
        return {left.start, Type::Text};
      }
      emit(Op::CompareText, at, 1, -2);
      last().compare = static_cast<uint8_t>(static_cast<int>(kind) - static_cast<int>(Tok::Eq));
      return number(left.start, Subtype::Boolean);
    }
    if (deferred && prec == PCompare && left.type != right.type) {
      emit(Op::CompareMixed, at, 0, -1);
      last().compare = static_cast<uint8_t>(static_cast<int>(kind) - static_cast<int>(Tok::Eq)) |
                       (left.type == Type::Number ? 0x80 : 0);
      return number(left.start, Subtype::Boolean);
    }
    if (left.type == Type::Text) {  // a text left of +, converted beneath the right operand
      emit(Op::TextToNumber, at, 1, -1);
      last().compare = 1;
      left.type = Type::Number;
      left.subtype = Subtype::Double;
    }
    toNumber(right, at);
    return binary(binaryOp(kind), left, right, at);
  }

  // "( arguments )" after a callable name, each converted to a number.
  struct Arguments {
    int count = 0;
    Subtype first = Subtype::Variant;  // the kind of the first argument
  };

  Arguments arguments() {
    advance();
    Arguments args;
    if (cur_.kind == Tok::RParen) {
      advance();
      return args;
    }
    for (;;) {
      Token first = cur_;
      Operand a = parse(Lowest);
      toNumber(a, first);
      if (args.count++ == 0) args.first = a.subtype;
      if (cur_.kind == Tok::Comma) {
        advance();
        continue;
      }
      if (cur_.kind != Tok::RParen) failAt(cur_, err::ExpectedRParen);
      advance();
      return args;
    }
  }

  Operand name(const Token& t) {
    size_t start = program_->code.size();
    std::string lower = lowerName(t.text);
    if (cur_.kind == Tok::Dot) return member(t, lower, start);
    if (const Builtin* b = findBuiltin(lower)) {
      if (cur_.kind != Tok::LParen) return pushFail(err::WrongArguments, t, t.text, start, 0);
      Arguments args = arguments();
      bool round2 = b->op == Op::Round && args.count == 2;
      if (args.count != 1 && !round2) return pushFail(err::WrongArguments, t, t.text, start, args.count);
      if (round2) {
        // Only a constant second argument is folded, and a constant is one instruction;
        // the result's kind is the first argument's.
        Operand places{program_->code.size() - 1, Type::Number, Subtype::Variant};
        return binary(Op::Round2, {start, Type::Number, args.first}, places, t);
      }
      return unary(b->op, {start, Type::Number, args.first}, t);
    }
    return use(scope_.lookup(lower), t, t.text, start, 0);
  }

  // obj.member: the members of a registered object, global or not.
  Operand member(const Token& objectName, std::string_view lower, size_t start) {
    advance();  // the dot
    Token m = cur_;
    if (m.kind != Tok::Name) failAt(m, err::ExpectedIdentifier);
    advance();
    std::string display(objectName.text);
    display += '.';
    display += m.text;
    const RegisteredObject* object = scope_.object(lower);
    if (!object) return use({}, objectName, objectName.text, start, err::ObjectRequired);
    auto it = object->members.find(lowerName(m.text));
    if (it == object->members.end()) return use({}, m, display, start, err::NoSuchMember);
    return use(it->second, m, display, start, 0);
  }

  // The code for a name that is bound (or not) as `b`. A name nothing defines yet is
  // looked up when the code runs (a later statement may create it), unless
  // `unbound` gives the error to raise instead. Calling a name that is not a function
  // raises 13 "Type mismatch: 'name'" when reached, which is how the language reports
  // an unknown function (statements cannot create functions, so nothing binds later).
  Operand use(const Binding& b, const Token& at, std::string_view display, size_t start, int32_t unbound) {
    using K = Binding::Kind;
    if (cur_.kind == Tok::LParen) {
      int count = arguments().count;
      if (b.kind == K::Function && count == 1) {
        if (options_.optimize && isSingleField({start, Type::Number})) {
          Instr& in = last();
          double* argument = in.field;
          in.op = Op::CallVar;
          in.call = {b.function, b.self, argument};
          program_->positions.back() = {at.line, at.column};
          return number(start, Subtype::Double);
        }
        emit(Op::Call, at, 0);
        last().call = {b.function, b.self, nullptr};
        return number(start, Subtype::Double);
      }
      int32_t error = b.kind == K::Function ? err::WrongArguments
                      : b.kind == K::Object ? err::NoSuchMember
                      : unbound          ? unbound
                                         : err::TypeMismatch;
      return pushFail(error, at, display, start, count);
    }
    switch (b.kind) {
      case K::Double: case K::Int32: return pushField(b, at);
      case K::Variable: return pushVariable(b.variable, at);
      case K::Function: return pushFail(err::WrongArguments, at, display, start, 0);
      case K::Object: return pushFail(err::NoSuchMember, at, display, start, 0);
      case K::None: break;
    }
    if (unbound) return pushFail(unbound, at, display, start, 0);
    emit(Op::LoadName, at, 1);
    last().index = addName(display);
    program_->lateBound = true;
    return {start, Type::Number, Subtype::Variant};
  }

  // name = expression, or object.member = expression.
  void statement() {
    Token target = cur_;
    if (target.kind != Tok::Name) failAt(target, err::ExpectedStatement);
    advance();
    std::string lower = lowerName(target.text);
    std::string display(target.text);
    Binding b;
    if (cur_.kind == Tok::Dot) {
      advance();
      Token m = cur_;
      if (m.kind != Tok::Name) failAt(m, err::ExpectedIdentifier);
      advance();
      const RegisteredObject* object = scope_.object(lower);
      if (!object) fail(err::ObjectRequired, target, target.text);
      display += '.';
      display += m.text;
      auto it = object->members.find(lowerName(m.text));
      if (it == object->members.end()) fail(err::NoSuchMember, m, display);
      b = it->second;
    } else {
      if (findBuiltin(lower)) fail(err::IllegalAssignment, target, target.text);
      b = scope_.lookup(lower);
    }
    if (cur_.kind != Tok::Eq) failAt(cur_, err::ExpectedEquals);
    advance();
    Token first = cur_;
    Operand value = parse(Lowest);
    toNumber(value, first);
    using K = Binding::Kind;
    switch (b.kind) {
      case K::Double:
        emit(Op::StoreDouble, target, -1);
        last().field = b.field;
        break;
      case K::Variable:
        emit(Op::StoreVar, target, -1);
        last().variable = b.variable;
        break;
      case K::Int32:
        emit(Op::StoreInt, target, -1);
        last().intField = b.intField;
        break;
      case K::Function: case K::Object:
        fail(err::IllegalAssignment, target, display);
      case K::None:
        emit(Op::StoreName, target, -1);
        last().index = addName(display);
        program_->lateBound = true;
        break;
    }
  }

  Lexer lexer_;
  const Scope& scope_;
  CompileOptions options_;
  std::unique_ptr<Program> program_;
  Token cur_;
  Token prev_;
  int depth_ = 0;
  int textDepth_ = 0;
  int nesting_ = 0;
  bool singles_ = false;  // some number may be a Single
};

}  // namespace

std::unique_ptr<Program> compile(std::string_view text, const Scope& scope, CompileOptions options) {
  std::unique_ptr<Program> program = Parser(text, scope, options).run();
  prepare(*program);
  return program;
}

}  // namespace orvane
