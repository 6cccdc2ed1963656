#pragma once
// Saving without losing the previous file: each file is written beside its target under
// a temporary name and renamed over the target only once complete, so that a full
// device, a missing folder or a refused permission leaves the old file as it was. The
// new file keeps what the old one had (permission bits, owner and group where the
// program may set them); a symbolic link stays and its target gets the new content.
//
// Reading a user's file: regular files only, opened so that a pipe without a writer
// never blocks, and refused before reading when the text would not fit in memory.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
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
//
// A target is refused before anything is written when it is not a regular file (a
// device, a pipe, a folder) or when the user may not write it. Root may write any file,
// but a file that has no write permission for anyone is refused for root too: it was
// made read-only on purpose, as an editor warns before overwriting it.
class SafeSave {
 public:
  SafeSave() = default;
  SafeSave(const SafeSave&) = delete;
  SafeSave& operator=(const SafeSave&) = delete;
  ~SafeSave();

  void Text(const std::string& target, std::string_view content);  // the bytes as given
  // A text made piece by piece: `produce` hands each piece to the writer it is given, in
  // order (from any thread, one call at a time). Pieces written head for the disk while
  // the next are made, so a large file is on the disk soon after its last piece.
  using PieceWriter = std::function<void(std::string_view)>;
  void Streamed(const std::string& target, const std::function<void(const PieceWriter&)>& produce);
  void Lines(const std::string& target, const std::vector<std::string>& lines);  // CR LF after each
  void Picture(const std::string& target, const Canvas& picture);
  // A file that another routine writes by name (a picture, a printed document): `write`
  // gets the temporary's name, an empty file made for it, and returns false on failure,
  // which is reported with `failure` as the reason.
  void WrittenBy(const std::string& target, const std::function<bool(const std::string&)>& write,
                 const std::string& failure);
  void Commit();

 private:
  struct Pending {
    std::string target;       // as the user named it
    std::string destination;  // the file replaced: the target, or where its links lead
    std::string temporary;
  };
  // Checks the target and makes its temporary beside the destination; the temporary's
  // descriptor, open for writing.
  int begin(const std::string& target);
  // Gives the temporary the old file's owner and permission bits, flushes and closes it.
  void seal(int fd);
  void discard();

  std::vector<Pending> files_;
};

// A user's file opened for reading: its descriptor, for the caller to close, and its
// size; -1 and the reason when it cannot be opened or is not a regular file. It is opened
// without waiting, so that a pipe with no writer cannot hold the program.
int OpenRegularFile(const std::string& path, uint64_t& size, std::string& reason);

// The whole file as bytes; nothing and the reason when it cannot be read: not a regular
// file, a folder, no permission, or more than the memory available could hold.
std::optional<std::string> ReadWholeFile(const std::string& path, std::string* reason = nullptr);

// The same bytes held without the zero fill a string gives its memory first, and read on
// every core at once: for files of many megabytes.
class FileBytes {
 public:
  std::string_view text() const { return {bytes_.get(), size_}; }

 private:
  friend std::optional<FileBytes> ReadLargeFile(const std::string& path, std::string* reason);
  std::unique_ptr<char[]> bytes_;
  size_t size_ = 0;
};
std::optional<FileBytes> ReadLargeFile(const std::string& path, std::string* reason = nullptr);

// The memory the program can still take, in bytes: what the system reports as available,
// or what is left under the program's memory limit when that is less.
uint64_t AvailableMemory();

// Lines ended by LF or CR LF; a last line without an end counts, an empty text has none.
std::vector<std::string> SplitLines(const std::string& text);

}  // namespace orvane
