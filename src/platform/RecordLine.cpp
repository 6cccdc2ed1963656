#include "platform/RecordLine.h"

namespace orvane {

namespace {

}  // namespace

std::string SeparatorName(char separator) {
  return separator == '\t' ? std::string("tabs") : "\"" + std::string(1, separator) + "\"";
}

bool SplitRecord(std::string_view line, size_t keep, RecordFields& out, char separator) {
  const auto isBlank = [separator](char c) { return c == ' ' || (c == '\t' && separator != '\t'); };
  out.kept.clear();
  out.count = 0;
  out.fault.clear();
  size_t i = 0;
  for (;;) {
    while (i < line.size() && isBlank(line[i])) ++i;
    const bool kept = out.count < keep;
    std::string* field = kept ? &out.kept.emplace_back() : nullptr;
    if (i < line.size() && line[i] == '"') {
      ++i;
      for (;;) {
        const size_t quote = line.find('"', i);
        if (quote == std::string_view::npos) {
          if (kept) out.kept.pop_back();
          out.fault = "a closing quote";
          return false;
        }
        if (field) field->append(line.substr(i, quote - i));
        i = quote + 1;
        if (i < line.size() && line[i] == '"') {  // "" stands for one quote
          if (field) *field += '"';
          ++i;
          continue;
        }
        break;
      }
      while (i < line.size() && isBlank(line[i])) ++i;
      if (i < line.size() && line[i] != separator) {
        if (kept) out.kept.pop_back();
        out.fault = SeparatorName(separator) + " after a closing quote";
        return false;
      }
    } else {
      size_t end = line.find(separator, i);
      if (end == std::string_view::npos) end = line.size();
      size_t last = end;
      while (last > i && isBlank(line[last - 1])) --last;
      if (field) field->assign(line.substr(i, last - i));
      i = end;
    }
    ++out.count;
    if (i >= line.size()) return true;
    ++i;  // past the separator
  }
}

std::string Excerpt(std::string_view text) {
  constexpr size_t kLongest = 40;
  size_t length = text.size();
  const bool cut = length > kLongest;
  if (cut) {
    length = kLongest;
    // Not inside a character of several bytes.
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
  }
  std::string shown(text.substr(0, length));
  for (char& c : shown)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  if (cut) shown += "...";
  return shown;
}

}  // namespace orvane
