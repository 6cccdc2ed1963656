#pragma once
// Saving without losing the previous file: each file is written beside its target under
// a temporary name and renamed over the target only once complete, so that a full
// device, a missing folder or a refused permission leaves the old file as it was.
// Reading whole files and splitting them into lines belongs here too.

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {

class Canvas;

// A save that failed: the file the user asked for and the system's reason.
class SaveError : public std::runtime_error {
 public:
  SaveError(std::string target, std::string reason);
  const std::string& target() const { return target_; }
  const std::string& reason() const { return reason_; }

 private:
  std::string target_, reason_;
};

// Files saved together: each goes to its temporary as it is added, Commit renames them
// over their targets in the order added. Temporaries not committed are removed when the
// set goes, so a failure anywhere before Commit changes no target.
class SafeSave {
 public:
  SafeSave() = default;
  SafeSave(const SafeSave&) = delete;
  SafeSave& operator=(const SafeSave&) = delete;
  ~SafeSave();

  void Text(const std::string& target, std::string_view content);
  void Lines(const std::string& target, const std::vector<std::string>& lines);  // CR LF after each
  void Picture(const std::string& target, const Canvas& picture);
  void Commit();

  static std::string TemporaryName(const std::string& target) { return target + ".part"; }

 private:
  void discard();
  std::vector<std::pair<std::string, std::string>> files_;  // temporary, target
};

// The whole file as bytes; nothing and the reason when it cannot be read.
std::optional<std::string> ReadWholeFile(const std::string& path, std::string* reason = nullptr);

// Lines ended by LF or CR LF; a last line without an end counts, an empty text has none.
std::vector<std::string> SplitLines(const std::string& text);

}  // namespace orvane
