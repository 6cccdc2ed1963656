#pragma once
// The options of one subcommand: "--name" followed by a fixed number of values,
// repeatable ones kept in order, and the positional arguments. "--" ends the options;
// a word starting with "-" that is not "--something" (such as -2^2) is positional.

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvane {

// A command line that cannot be understood; the message says why.
class UsageError : public std::runtime_error {
 public:
  explicit UsageError(const std::string& message) : std::runtime_error(message) {}
};

struct OptionRule {
  std::string name;  // without the leading "--"
  int values = 0;    // how many values follow it
  bool repeatable = false;
};

class ParsedOptions {
 public:
  bool has(const std::string& name) const { return values_.count(name) != 0; }
  // The values of the (last) occurrence; empty when absent.
  std::vector<std::string> get(const std::string& name) const;
  std::optional<std::string> single(const std::string& name) const;
  // Every occurrence's first value, in order (repeatable options).
  std::vector<std::string> all(const std::string& name) const;
  const std::vector<std::string>& positional() const { return positional_; }

 private:
  friend ParsedOptions ParseOptions(const std::vector<std::string>&, const std::vector<OptionRule>&);
  std::map<std::string, std::vector<std::vector<std::string>>> values_;
  std::vector<std::string> positional_;
};

// UsageError for an unknown option, a missing value or an option given twice that
// may be given only once. "--help" is always known.
ParsedOptions ParseOptions(const std::vector<std::string>& args, const std::vector<OptionRule>& rules);

// A value that must be a number (the whole text): UsageError naming the option otherwise.
double NumberOption(const std::string& option, const std::string& text);

}  // namespace orvane
