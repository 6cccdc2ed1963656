#include "engine/UserConstants.h"

#include <algorithm>

#include "engine/ExpressionEngine.h"
#include "platform/RuntimeError.h"

namespace orvane {

namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::string_view UserConstants::namePart(std::string_view entry) { return entry.substr(0, entry.find('=')); }

bool UserConstants::Add(std::string_view typed) {
  size_t pos = typed.find('=');
  if (pos == std::string_view::npos) return false;
  std::string_view name = typed.substr(0, pos);
  if (name.empty() || !isLetter(name[0])) return false;
  if (!std::all_of(name.begin(), name.end(), [](char c) { return isLetter(c) || isDigit(c); })) return false;
  std::erase_if(entries_, [&](const std::string& entry) { return namePart(entry) == name; });
  if (numcon() >= MaxEntries) return false;
  entries_.emplace_back(typed);
  return true;
}

void UserConstants::Remove(int index, ExpressionEngine& engine) {
  if (index < 0 || index >= numcon()) throw RuntimeError(err::SubscriptOutOfRange);
  const std::string& entry = entries_[static_cast<size_t>(index)];
  std::string statement = entry.substr(0, entry.find('=') + 1) + "0";
  entries_.erase(entries_.begin() + index);
  // The entry goes even when the engine refuses the statement; the engine has
  // reported why.
  engine.ExecuteStatement(statement);
}

void UserConstants::RegisterAll(ExpressionEngine& engine) const {
  for (const std::string& entry : entries_) engine.ExecuteStatement(entry);
}

}  // namespace orvane
