#pragma once
// The compiled form of a formula or of a line of statements: flat fixed-size
// instructions in postfix order, the source position of each, the texts and names they
// refer to, and the stack depths the evaluator needs. Also the names a compilation
// binds against (registered objects and script variables).

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/ScriptObject.h"
#include "engine/Subtype.h"

namespace orvane {

// The instruction set, as a list so that the evaluator's dispatch table is generated
// in the same order as the enumeration.
#define ORVANE_ENGINE_OPS(X)                                                              \
  /* Push a value. */                                                                     \
  X(Const) X(LoadDouble) X(LoadInt) X(LoadVar) X(LoadName) X(PushText)                    \
  /* Unary, on the top of the stack. */                                                   \
  X(Neg) X(Not) X(Square) X(Cube)                                                         \
  X(Abs) X(Atn) X(Cos) X(Exp) X(Fix) X(Int) X(Log) X(Round) X(Sgn) X(Sin) X(Sqr) X(Tan)   \
  X(CDbl) X(CInt) X(CLng) X(CSng) X(CBool)                                                \
  X(Call)                                                                                 \
  /* Binary, on the two top entries. */                                                   \
  X(Add) X(Sub) X(Mul) X(Div) X(Pow) X(IntDiv) X(Mod)                                     \
  X(Eq) X(Ne) X(Lt) X(Gt) X(Le) X(Ge)                                                     \
  X(And) X(Or) X(Xor) X(Eqv) X(Imp) X(Round2)                                             \
  /* Binary with the right operand held in the instruction (a constant or a field). */    \
  X(AddConst) X(MulConst) X(DivConst) X(PowConst)                                         \
  X(AddVar) X(SubVar) X(MulVar) X(DivVar) X(PowVar)                                       \
  /* Push a field combined with a constant or another field (x+1, 2*x, x*y). */           \
  X(VarAddConst) X(VarMulConst) X(ConstSubVar) X(VarAddVar) X(VarSubVar) X(VarMulVar)     \
  X(VarDivConst) X(ConstDivVar) X(VarSquare) X(VarCube)                                   \
  /* The top with such a pushed pair: *(x+c), +x*c, -x*c (polynomial shapes). */          \
  X(MulVarAddConst) X(AddVarMulConst) X(SubVarMulConst)                                   \
  /* Push a product plus a constant: a*x+b, x*y+c. */                                       \
  X(VarMulConstAddConst) X(VarMulVarAddConst)                                             \
  /* Push a function of a field: Sin(x), Exp(x), Tanh(x). */                                \
  X(AbsVar) X(AtnVar) X(CosVar) X(ExpVar) X(LogVar) X(SinVar) X(SqrVar) X(TanVar)         \
  X(CallVar)                                                                              \
  /* Sin and Cos of the same field, both from one computation; the second is kept. */      \
  X(SinKeepCos) X(CosKeepSin) X(PushKept)                                                 \
  /* Texts (only for concatenation and comparison). */                                    \
  X(NumberToText) X(TextToNumber) X(Concat) X(CompareText) X(CompareMixed)                \
  /* Statements. */                                                                       \
  X(StoreDouble) X(StoreInt) X(StoreVar) X(StoreName)                                     \
  /* Raise the error held in the instruction (an unknown function, a wrong call). */      \
  X(Fail)                                                                                 \
  X(Return)

enum class Op : uint8_t {
#define ORVANE_ENGINE_OP_NAME(name) name,
  ORVANE_ENGINE_OPS(ORVANE_ENGINE_OP_NAME)
#undef ORVANE_ENGINE_OP_NAME
};

// Comparison kinds carried by CompareText and CompareMixed, in token order.
enum class Compare : uint8_t { Eq, Ne, Lt, Gt, Le, Ge };

// The kind of an operation's result before any overflow (Subtype.h); an operand of kind
// Variant gives a Variant where the result's kind depends on it.
inline Subtype resultType(Op op, Subtype operand) {
  switch (op) {
    case Op::Neg: case Op::Abs: case Op::Fix: case Op::Int: case Op::Round:
      return operand == Subtype::Variant ? operand : vb::signedType(operand);
    case Op::Not: return vb::notType(operand);
    case Op::Sgn: case Op::CInt: return Subtype::Integer;
    case Op::CLng: return Subtype::Long;
    case Op::CSng: return Subtype::Single;
    case Op::CBool: return Subtype::Boolean;
    default: return Subtype::Double;  // the functions of a real argument, CDbl, calls
  }
}

inline Subtype resultType(Op op, Subtype left, Subtype right) {
  switch (op) {
    case Op::Add: case Op::Sub: case Op::Mul: return vb::sumType(left, right);
    case Op::Div: return vb::quotientType(left, right);
    case Op::IntDiv: case Op::Mod: return vb::wholeQuotientType(left, right);
    case Op::Eq: case Op::Ne: case Op::Lt: case Op::Gt: case Op::Le: case Op::Ge: return Subtype::Boolean;
    case Op::And: case Op::Or: case Op::Xor: case Op::Eqv: case Op::Imp: return vb::bitwiseType(left, right);
    case Op::Round2: return resultType(Op::Round, left);
    default: return Subtype::Double;  // ^
  }
}

// A script variable: its value and the kind of number it holds.
struct Variable {
  double value = 0;
  Subtype type = Subtype::Integer;
};

struct Instr {
  const void* handler = nullptr;  // where the evaluator runs `op`, set by prepare() (Evaluator.h)
  Op op = Op::Return;
  uint8_t compare = 0;   // Compare kind; for CompareMixed bit 7 set = number on the left
  Subtype type = Subtype::Double;  // Const, LoadDouble: the kind of number pushed
  int32_t index = -1;    // name or text index; inner position of a fused pair
  union {
    double value;
    int32_t error;         // Fail: the error number
    double* field;
    int32_t* intField;
    Variable* variable;    // LoadVar, StoreVar
    struct {
      ScriptFunction function;
      ScriptObject* self;
      double* argument;  // CallVar: the field passed
    } call;
    struct {
      double* field;
      double value;
      double addend;  // the ...AddConst forms: the constant added last
    } withConst;
    struct {
      double* left;
      double* right;
      double addend;
    } fields;
  };
  Instr() : value(0) {}
};

// The stack the evaluator keeps on the native stack; deeper programs get their own.
constexpr int PlainStackDepth = 64;

struct BlockCode;  // the program as passes over lanes (BlockEvaluator.h)

struct SourcePos {
  int32_t line = 1;
  int32_t column = 1;
};

struct Program {
  std::vector<Instr> code;
  std::vector<SourcePos> positions;  // one per instruction
  std::vector<SourcePos> inner;      // the inner operator of a fused pair, by Instr::index
  std::vector<std::string> texts;    // text literals
  std::vector<std::string> names;    // names as typed, for messages
  std::vector<std::string> keys;     // the same in lower case, for late binding
  int32_t maxDepth = 0;              // numeric stack
  int32_t maxTextDepth = 0;          // text stack
  bool lateBound = false;            // refers to a name that was not defined yet
  bool bindsVariables = false;       // compiled for the kinds its variables held then
  bool isStatement = false;
  // Numbers only, no late names, a small stack, and no Single anywhere (so that the kind
  // of a number cannot change any value): the fast loop, which keeps no kinds.
  bool plain = false;
  // Made on the program's first block and kept with it.
  mutable std::shared_ptr<const BlockCode> blockCode;
};

// Error numbers of the language beyond the common run-time ones.
namespace err {
constexpr int32_t OutOfStack = 28;
constexpr int32_t ObjectRequired = 424;
constexpr int32_t NoSuchMember = 438;
constexpr int32_t WrongArguments = 450;
constexpr int32_t NameInUse = 457;
constexpr int32_t UndefinedVariable = 500;
constexpr int32_t IllegalAssignment = 501;
constexpr int32_t SyntaxError = 1002;
constexpr int32_t ExpectedLParen = 1005;
constexpr int32_t ExpectedRParen = 1006;
constexpr int32_t ExpectedIdentifier = 1010;
constexpr int32_t ExpectedEquals = 1011;
constexpr int32_t ExpectedExpression = 1023;
constexpr int32_t ExpectedStatement = 1024;
constexpr int32_t ExpectedEndOfStatement = 1025;
constexpr int32_t IdentifierTooLong = 1030;
constexpr int32_t InvalidNumber = 1031;
constexpr int32_t InvalidCharacter = 1032;
constexpr int32_t UnterminatedText = 1033;
}  // namespace err

// The description the engine gives an error number; with a name, the name follows as
// the language shows it: "Variable is undefined: 'a'".
std::string scriptErrorDescription(int32_t number, std::string_view name = {});

// Lower-case ASCII copy: names are compared without regard to case.
std::string lowerName(std::string_view name);

struct TextHash {
  using is_transparent = void;
  size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
};
template <class T>
using NameMap = std::unordered_map<std::string, T, TextHash, std::equal_to<>>;

// Script variables created by statements. Each lives at a fixed address for the
// engine's life (until Reset), so compiled code binds it by address.
class Variables {
 public:
  Variable* find(std::string_view lower) const {
    auto it = map_.find(lower);
    return it == map_.end() ? nullptr : it->second.get();
  }
  Variable* create(std::string_view lower) {
    if (Variable* v = find(lower)) return v;
    ++created_;
    return map_.emplace(std::string(lower), std::make_unique<Variable>()).first->second.get();
  }
  void assign(Variable& v, double value, Subtype type) {
    if (v.type != type) ++retyped_;
    v.value = value;
    v.type = type;
  }
  uint64_t created() const { return created_; }
  uint64_t retyped() const { return retyped_; }  // assignments that changed a kind
  void clear() { map_.clear(); }

 private:
  NameMap<std::unique_ptr<Variable>> map_;
  uint64_t created_ = 0;
  uint64_t retyped_ = 0;
};

// What a name means when a text is compiled.
struct Binding {
  enum class Kind : uint8_t { None, Double, Int32, Function, Object, Variable };
  Kind kind = Kind::None;
  double* field = nullptr;
  int32_t* intField = nullptr;
  Variable* variable = nullptr;
  ScriptFunction function = nullptr;
  ScriptObject* self = nullptr;
};

struct RegisteredObject {
  std::string name;
  ScriptObject* object = nullptr;
  NameMap<Binding> members;
};

struct Scope {
  NameMap<Binding> globals;                 // members of objects added with their members global
  NameMap<RegisteredObject> objects;
  Variables variables;

  Binding lookup(std::string_view lower) const;
  const RegisteredObject* object(std::string_view lower) const;
};

}  // namespace orvane
