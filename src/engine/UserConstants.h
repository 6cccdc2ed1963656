#pragma once
// The user's named constants of a plot window ("a=2.37"): the list is the master copy
// and is run through the window's engine, in order, before every computation.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

class ExpressionEngine;

// The texts of the constants frame, shared by both plot windows.
namespace constantsText {
constexpr std::string_view Frame = "User constants";
constexpr std::string_view FrameTip = "Add or remove user-defined constants";
constexpr std::string_view Example = "Example: a=2.37";
constexpr std::string_view AddTip = "Add (register) constant";
constexpr std::string_view RemoveCaption = "Remove";
constexpr std::string_view RemoveTip = "Remove selected constant";
}  // namespace constantsText

class UserConstants {
 public:
  static constexpr int32_t MaxEntries = 101;

  // Adds "name=value" when the name (the text before the first "=") starts with an
  // ASCII letter and has only letters and digits; an entry with the same name is
  // replaced. False when refused (or the list is full): nothing changes.
  bool Add(std::string_view typed);

  // Sets the entry's name to 0 in the engine, so formulas still using it see 0, and
  // drops the entry. RuntimeError 9 for an index outside the list.
  void Remove(int index, ExpressionEngine& engine);

  // Runs every entry as a statement, in list order; the first failing one raises
  // the engine's error.
  void RegisterAll(ExpressionEngine& engine) const;

  int32_t numcon() const { return static_cast<int32_t>(entries_.size()); }
  const std::vector<std::string>& entries() const { return entries_; }

  // The text before an entry's first "=" (the whole text when there is none).
  static std::string_view namePart(std::string_view entry);

 private:
  std::vector<std::string> entries_;
};

}  // namespace orvane
