#include "batch/CommandLine.h"

#include <cmath>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"

namespace orvane {

std::vector<std::string> ParsedOptions::get(const std::string& name) const {
  auto it = values_.find(name);
  if (it == values_.end() || it->second.empty()) return {};
  return it->second.back();
}

std::optional<std::string> ParsedOptions::single(const std::string& name) const {
  std::vector<std::string> v = get(name);
  if (v.empty()) return std::nullopt;
  return v.front();
}

std::vector<std::string> ParsedOptions::all(const std::string& name) const {
  std::vector<std::string> out;
  auto it = values_.find(name);
  if (it == values_.end()) return out;
  for (const auto& occurrence : it->second) out.push_back(occurrence.empty() ? std::string() : occurrence.front());
  return out;
}

ParsedOptions ParseOptions(const std::vector<std::string>& args, const std::vector<OptionRule>& rules) {
  ParsedOptions parsed;
  bool optionsEnded = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& word = args[i];
    if (optionsEnded || word.size() < 3 || word.compare(0, 2, "--") != 0) {
      if (!optionsEnded && word == "--") {
        optionsEnded = true;
        continue;
      }
      if (!optionsEnded && word == "-h") {
        parsed.values_["help"].push_back({});
        continue;
      }
      parsed.positional_.push_back(word);
      continue;
    }
    std::string name = word.substr(2);
    std::string inlineValue;
    bool hasInline = false;
    if (size_t eq = name.find('='); eq != std::string::npos) {
      inlineValue = name.substr(eq + 1);
      name = name.substr(0, eq);
      hasInline = true;
    }
    const OptionRule* rule = nullptr;
    static const OptionRule help{"help", 0, true};
    if (name == "help") rule = &help;
    for (const OptionRule& s : rules)
      if (s.name == name) rule = &s;
    if (!rule) throw UsageError("unknown option --" + name);
    if (!rule->repeatable && parsed.values_.count(name))
      throw UsageError("--" + name + " is given more than once");
    std::vector<std::string> values;
    if (hasInline) {
      if (rule->values != 1) throw UsageError("--" + name + " does not take a value after \"=\"");
      values.push_back(inlineValue);
    } else {
      for (int k = 0; k < rule->values; ++k) {
        if (i + 1 >= args.size())
          throw UsageError("--" + name + " needs " + std::to_string(rule->values) +
                           (rule->values == 1 ? " value" : " values"));
        values.push_back(args[++i]);
      }
    }
    parsed.values_[name].push_back(std::move(values));
  }
  return parsed;
}

double NumberOption(const std::string& option, const std::string& text) {
  double value = 0;
  try {
    value = parseStrict(text);
  } catch (const RuntimeError&) {
    throw UsageError("--" + option + ": not a number: \"" + text + "\"");
  }
  if (!std::isfinite(value)) throw UsageError("--" + option + ": not a number: \"" + text + "\"");
  return value;
}

}  // namespace orvane
