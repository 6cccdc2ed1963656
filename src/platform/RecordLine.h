#pragma once
// The record lines of the program's text files (the regression file pair, the stereo
// export, the batch tool's CSV tables): fields separated by ",", blanks around a field
// ignored, a field in double quotes taken without them, "" inside standing for one
// quote. One splitter for every reader, so that they agree on what a line holds.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

struct RecordFields {
  std::vector<std::string> kept;  // the first fields of the line, as many as asked for
  size_t count = 0;               // how many fields the line has, kept or not
  std::string fault;              // what a malformed line lacks; empty when it is well formed
};

// Splits `line`, keeping at most `keep` fields: the others are only counted, so that a
// line of millions of commas costs no more than the line itself. Stops at the first
// fault (a quote left open, text after a closing quote); false then, with `fault` set
// and the fields before it kept. Tables of text may separate their fields by ";" or a
// tab instead (a tab separator is then not a blank).
bool SplitRecord(std::string_view line, size_t keep, RecordFields& out, char separator = ',');

// How a message names a separator: "\",\"", "\";\"" or "tabs".
std::string SeparatorName(char separator);

// A text from a file as a message quotes it: at most 40 characters, cut with "...",
// control characters shown as "?", so that a line of megabytes or binary garbage still
// gives a message that fits a message box.
std::string Excerpt(std::string_view text);

}  // namespace orvane
