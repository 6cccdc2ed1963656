#include "platform/SafeFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "platform/Canvas.h"
#include "platform/LargeBuffer.h"

namespace orvane {

namespace fs = std::filesystem;

SaveError::SaveError(std::string target, std::string reason)
    : std::runtime_error("Cannot write \"" + target + "\": " + reason),
      target_(std::move(target)),
      reason_(std::move(reason)) {}

SafeSave::~SafeSave() { discard(); }

void SafeSave::discard() {
  std::error_code ignored;
  for (const auto& file : files_) fs::remove(file.first, ignored);
  files_.clear();
}

void SafeSave::Text(const std::string& target, std::string_view content) {
  errno = 0;
  const std::string temporary = TemporaryName(target);
  files_.emplace_back(temporary, target);
  std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
  if (out) out.write(content.data(), static_cast<std::streamsize>(content.size()));
  if (out) out.flush();
  if (!out) throw SaveError(target, std::strerror(errno ? errno : EIO));
}

void SafeSave::Lines(const std::string& target, const std::vector<std::string>& lines) {
  size_t size = 0;
  for (const std::string& line : lines) size += line.size() + 2;
  std::string content;
  content.reserve(size);
  for (const std::string& line : lines) (content += line) += "\r\n";
  Text(target, content);
}

void SafeSave::Picture(const std::string& target, const Canvas& picture) {
  const std::string temporary = TemporaryName(target);
  files_.emplace_back(temporary, target);
  if (!picture.SavePicture(temporary)) throw SaveError(target, "the picture could not be written");
}

void SafeSave::Commit() {
  for (const auto& [temporary, target] : files_) {
    std::error_code error;
    fs::rename(temporary, target, error);
    if (error) throw SaveError(target, error.message());
  }
  files_.clear();
}

std::optional<std::string> ReadWholeFile(const std::string& path, std::string* reason) {
  errno = 0;
  std::error_code error;
  if (fs::is_directory(path, error)) {
    if (reason) *reason = std::strerror(EISDIR);
    return std::nullopt;
  }
  std::ifstream in(path, std::ios::binary);
  if (in) {
    std::string text;
    // Sized once, so a large file is held only once while it is read.
    const auto size = fs::file_size(path, error);
    if (!error) ReserveLarge(text, static_cast<size_t>(size));
    char buffer[1 << 16];
    while (in.read(buffer, sizeof buffer) || in.gcount() > 0) text.append(buffer, static_cast<size_t>(in.gcount()));
    if (!in.bad()) return text;
  }
  if (reason) *reason = std::strerror(errno ? errno : EIO);
  return std::nullopt;
}

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    size_t length = end - start;
    if (length > 0 && text[end - 1] == '\r') --length;
    lines.emplace_back(text, start, length);
    start = end + 1;
  }
  return lines;
}

}  // namespace orvane
