#include "engine/Program.h"

#include "platform/RuntimeError.h"

namespace orvane {

std::string scriptErrorDescription(int32_t number, std::string_view name) {
  std::string text;
  switch (number) {
    case err::ObjectRequired: text = "Object required"; break;
    case err::NoSuchMember: text = "Object doesn't support this property or method"; break;
    case err::WrongArguments: text = "Wrong number of arguments or invalid property assignment"; break;
    case err::NameInUse: text = "This key is already associated with an element of this collection"; break;
    case err::UndefinedVariable: text = "Variable is undefined"; break;
    case err::IllegalAssignment: text = "Illegal assignment"; break;
    case err::SyntaxError: text = "Syntax error"; break;
    case err::ExpectedLParen: text = "Expected '('"; break;
    case err::ExpectedRParen: text = "Expected ')'"; break;
    case err::ExpectedIdentifier: text = "Expected identifier"; break;
    case err::ExpectedEquals: text = "Expected '='"; break;
    case err::ExpectedExpression: text = "Expected expression"; break;
    case err::ExpectedStatement: text = "Expected statement"; break;
    case err::ExpectedEndOfStatement: text = "Expected end of statement"; break;
    case err::IdentifierTooLong: text = "Identifier too long"; break;
    case err::InvalidNumber: text = "Invalid number"; break;
    case err::InvalidCharacter: text = "Invalid character"; break;
    case err::UnterminatedText: text = "Unterminated string constant"; break;
    default: text = errorDescription(number); break;
  }
  if (!name.empty()) {
    text += ": '";
    text += name;
    text += "'";
  }
  return text;
}

std::string lowerName(std::string_view name) {
  std::string s(name);
  for (char& c : s)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return s;
}

Binding Scope::lookup(std::string_view lower) const {
  if (auto it = globals.find(lower); it != globals.end()) return it->second;
  if (auto it = objects.find(lower); it != objects.end()) {
    Binding b;
    b.kind = Binding::Kind::Object;
    b.self = it->second.object;
    return b;
  }
  if (Variable* v = variables.find(lower)) {
    Binding b;
    b.kind = Binding::Kind::Variable;
    b.variable = v;
    return b;
  }
  return {};
}

const RegisteredObject* Scope::object(std::string_view lower) const {
  auto it = objects.find(lower);
  return it == objects.end() ? nullptr : &it->second;
}

}  // namespace orvane
