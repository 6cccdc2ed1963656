#include "platform/SafeFile.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <algorithm>
#include <cstring>
#include <fstream>
#include <set>
#include <utility>

#include "platform/Canvas.h"
#include "platform/LargeBuffer.h"
#include "platform/WorkParts.h"

namespace orvane {

namespace {

std::string systemReason(int error) { return std::strerror(error); }

// A descriptor closed when it goes out of scope.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int get() const { return fd_; }
  int release() { return std::exchange(fd_, -1); }
  // Closes now; the system's error number, 0 when it went well.
  int close() {
    const int result = ::close(fd_);
    fd_ = -1;
    return result == 0 ? 0 : errno;
  }

 private:
  int fd_;
};

std::string folderOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Where a chain of symbolic links ends (the path itself when it is no link); a link that
// leads nowhere ends at the file it names, which the save then creates.
std::string followLinks(const std::string& target) {
  std::string path = target;
  for (int hops = 0; hops < 40; ++hops) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) return path;
    std::string link(static_cast<size_t>(st.st_size > 0 ? st.st_size : 4096) + 1, '\0');
    const ssize_t length = ::readlink(path.c_str(), link.data(), link.size());
    if (length < 0) throw SaveError(target, systemReason(errno));
    link.resize(static_cast<size_t>(length));
    path = link.front() == '/' ? link : folderOf(path) + "/" + link;
  }
  throw SaveError(target, systemReason(ELOOP));
}

// Letters and digits no one can guess, for a temporary's name.
std::string randomLetters(size_t count) {
  static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  unsigned char bytes[16];
  if (count > sizeof bytes || ::getrandom(bytes, count, 0) != static_cast<ssize_t>(count)) {
    std::ifstream("/dev/urandom", std::ios::binary).read(reinterpret_cast<char*>(bytes), sizeof bytes);
  }
  std::string letters;
  for (size_t i = 0; i < count; ++i) letters += kLetters[bytes[i] % (sizeof kLetters - 1)];
  return letters;
}

int writeAll(int fd, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = ::write(fd, content.data(), content.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    content.remove_prefix(static_cast<size_t>(written));
  }
  return 0;
}

// "12.5 GB", "700 MB": a size as a message gives it.
std::string sizeText(uint64_t bytes) {
  char text[32];
  if (bytes >= (uint64_t{1} << 30))
    std::snprintf(text, sizeof text, "%.1f GB", static_cast<double>(bytes) / (uint64_t{1} << 30));
  else
    std::snprintf(text, sizeof text, "%.0f MB", static_cast<double>(bytes) / (uint64_t{1} << 20));
  return text;
}

// A number of bytes read from the first line of a file; nothing when it holds none.
std::optional<uint64_t> numberIn(const std::string& file) {
  std::ifstream in(file);
  uint64_t value = 0;
  if (in >> value) return value;
  return std::nullopt;
}

// Holding a file's text and what is read from it (the data matrix beside the text, each
// about as large) takes about twice the file's size.
constexpr uint64_t kMemoryPerFileByte = 2;

}  // namespace

SaveError::SaveError(std::string target, std::string reason)
    : std::runtime_error("Cannot write \"" + target + "\": " + reason),
      target_(std::move(target)),
      reason_(std::move(reason)) {}

SafeSave::~SafeSave() { discard(); }

void SafeSave::discard() {
  for (const Pending& file : files_) ::unlink(file.temporary.c_str());
  files_.clear();
}

int SafeSave::begin(const std::string& target) {
  Pending file{target, followLinks(target), {}};
  struct stat old {};
  const bool replaces = ::stat(file.destination.c_str(), &old) == 0;
  if (!replaces && errno != ENOENT) throw SaveError(target, systemReason(errno));
  if (replaces) {
    if (S_ISDIR(old.st_mode)) throw SaveError(target, systemReason(EISDIR));
    if (!S_ISREG(old.st_mode)) throw SaveError(target, "not a regular file");
    if (::access(file.destination.c_str(), W_OK) != 0) throw SaveError(target, systemReason(errno));
    if ((old.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) throw SaveError(target, systemReason(EACCES));
  }

  // Made only where no file is (O_EXCL), under a name no one can guess: a stale or
  // planted file of that name is never written through. Private until it is complete.
  const std::string stem = folderOf(file.destination) + "/." + nameOf(file.destination).substr(0, 200) + ".";
  int fd = -1;
  for (int attempt = 0; fd < 0 && attempt < 100; ++attempt) {
    file.temporary = stem + randomLetters(8) + ".part";
    fd = ::open(file.temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW,
                replaces ? 0600 : 0666);
    if (fd < 0 && errno != EEXIST) throw SaveError(target, systemReason(errno));
  }
  if (fd < 0) throw SaveError(target, systemReason(EEXIST));
  files_.push_back(std::move(file));
  return fd;
}

void SafeSave::seal(int fd) {
  Descriptor temporary(fd);
  const Pending& file = files_.back();
  struct stat old {};
  if (::stat(file.destination.c_str(), &old) == 0) {
    // Owner and group only where the system lets this user give them.
    if (::fchown(fd, old.st_uid, old.st_gid) != 0) (void)::fchown(fd, static_cast<uid_t>(-1), old.st_gid);
    if (::fchmod(fd, old.st_mode & 0777) != 0) throw SaveError(file.target, systemReason(errno));
  }
  // On the disk before it takes the old file's place, so a crash leaves one or the other.
  if (::fsync(fd) != 0) throw SaveError(file.target, systemReason(errno));
  if (const int error = temporary.close()) throw SaveError(file.target, systemReason(error));
}

void SafeSave::Text(const std::string& target, std::string_view content) {
  Streamed(target, [content](const PieceWriter& write) { write(content); });
}

void SafeSave::Streamed(const std::string& target, const std::function<void(const PieceWriter&)>& produce) {
  Descriptor file(begin(target));
  off_t written = 0;
  produce([&](std::string_view piece) {
    if (const int error = writeAll(file.get(), piece)) throw SaveError(target, systemReason(error));
    // The disk starts on this piece now; the flush before the rename waits only for the rest.
    (void)::sync_file_range(file.get(), written, static_cast<off_t>(piece.size()), SYNC_FILE_RANGE_WRITE);
    written += static_cast<off_t>(piece.size());
  });
  seal(file.release());
}

void SafeSave::Lines(const std::string& target, const std::vector<std::string>& lines) {
  size_t size = 0;
  for (const std::string& line : lines) size += line.size() + 2;
  std::string content;
  content.reserve(size);
  for (const std::string& line : lines) (content += line) += "\r\n";
  Text(target, content);
}

void SafeSave::WrittenBy(const std::string& target, const std::function<bool(const std::string&)>& write,
                         const std::string& failure) {
  ::close(begin(target));
  const std::string temporary = files_.back().temporary;
  if (!write(temporary)) throw SaveError(target, failure);
  const int fd = ::open(temporary.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
  if (fd < 0) throw SaveError(target, systemReason(errno));
  seal(fd);
}

void SafeSave::Picture(const std::string& target, const Canvas& picture) {
  WrittenBy(target, [&picture](const std::string& temporary) { return picture.SavePicture(temporary); },
            "the picture could not be written");
}

void SafeSave::Commit() {
  std::set<std::string> folders;
  while (!files_.empty()) {
    const Pending& file = files_.front();
    if (::rename(file.temporary.c_str(), file.destination.c_str()) != 0)
      throw SaveError(file.target, systemReason(errno));
    folders.insert(folderOf(file.destination));
    files_.erase(files_.begin());
  }
  // The renames themselves on the disk; a folder that cannot be flushed loses nothing
  // that a later flush would not bring.
  for (const std::string& folder : folders) {
    Descriptor dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.get() >= 0) (void)::fsync(dir.get());
  }
}

uint64_t AvailableMemory() {
  uint64_t available = UINT64_MAX;
  std::ifstream meminfo("/proc/meminfo");
  for (std::string key; meminfo >> key;) {
    uint64_t kilobytes = 0;
    if (key == "MemAvailable:" && meminfo >> kilobytes) {
      available = kilobytes * 1024;
      break;
    }
    meminfo.ignore(256, '\n');
  }
  if (available == UINT64_MAX) {
    const long pages = ::sysconf(_SC_AVPHYS_PAGES), page = ::sysconf(_SC_PAGESIZE);
    if (pages > 0 && page > 0) available = static_cast<uint64_t>(pages) * static_cast<uint64_t>(page);
  }
  // A control group's limit (a container, a session slice) may be tighter than the machine.
  std::ifstream groups("/proc/self/cgroup");
  for (std::string line; std::getline(groups, line);) {
    if (line.rfind("0::", 0) != 0) continue;
    const std::string folder = "/sys/fs/cgroup" + line.substr(3);
    const std::optional<uint64_t> limit = numberIn(folder + "/memory.max");
    const std::optional<uint64_t> used = numberIn(folder + "/memory.current");
    if (limit && used) available = std::min(available, *limit > *used ? *limit - *used : 0);
  }
  return available;
}

namespace {

// A user's file opened for reading whole, and its size then; nothing and the reason when
// it is not a regular file or cannot fit in the memory available.
struct OpenedFile {
  explicit OpenedFile(int fd) : file(fd) {}
  Descriptor file;
  uint64_t size = 0;
  uint64_t room = 0;  // the most a text read from it may grow to
};

std::string tooLargeReason(uint64_t size, uint64_t available) {
  return "too large: reading its " + sizeText(size) + " takes about " + sizeText(size * kMemoryPerFileByte) +
         " of memory, and " + sizeText(available) + " is available";
}

std::unique_ptr<OpenedFile> openWhole(const std::string& path, std::string* reason) {
  const auto refuse = [reason](std::string why) -> std::unique_ptr<OpenedFile> {
    if (reason) *reason = std::move(why);
    return nullptr;
  };
  std::string why;
  uint64_t size = 0;
  const int fd = OpenRegularFile(path, size, why);
  if (fd < 0) return refuse(why);
  auto opened = std::make_unique<OpenedFile>(fd);
  const uint64_t available = AvailableMemory();
  opened->size = size;
  opened->room = available / kMemoryPerFileByte;
  if (opened->size > opened->room) return refuse(tooLargeReason(opened->size, available));
  return opened;
}

// The rest of an opened file appended to `text`, to its end; the system's error number
// (or EFBIG when it outgrows the room) on failure, 0 when it went well.
int readToEnd(OpenedFile& opened, std::string& text) {
  char buffer[1 << 16];
  for (;;) {
    const ssize_t count = ::read(opened.file.get(), buffer, sizeof buffer);
    if (count < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (count == 0) return 0;
    text.append(buffer, static_cast<size_t>(count));
    if (text.size() > opened.room) return EFBIG;  // it grew while read
  }
}

}  // namespace

int OpenRegularFile(const std::string& path, uint64_t& size, std::string& reason) {
  Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  const auto refuse = [&reason](std::string why) {
    reason = std::move(why);
    return -1;
  };
  if (file.get() < 0) return refuse(systemReason(errno));
  struct stat st {};
  if (::fstat(file.get(), &st) != 0) return refuse(systemReason(errno));
  if (S_ISDIR(st.st_mode)) return refuse(systemReason(EISDIR));
  if (!S_ISREG(st.st_mode)) return refuse("not a regular file");
  ::fcntl(file.get(), F_SETFL, ::fcntl(file.get(), F_GETFL) & ~O_NONBLOCK);
  size = static_cast<uint64_t>(st.st_size);
  return file.release();
}

std::optional<std::string> ReadWholeFile(const std::string& path, std::string* reason) {
  const std::unique_ptr<OpenedFile> opened = openWhole(path, reason);
  if (!opened) return std::nullopt;
  std::string text;
  // Sized once, so a large file is held only once while it is read.
  ReserveLarge(text, static_cast<size_t>(opened->size));
  if (const int error = readToEnd(*opened, text)) {
    if (reason) *reason = error == EFBIG ? tooLargeReason(text.size(), opened->room * kMemoryPerFileByte)
                                         : systemReason(error);
    return std::nullopt;
  }
  return text;
}

std::optional<FileBytes> ReadLargeFile(const std::string& path, std::string* reason) {
  const std::unique_ptr<OpenedFile> opened = openWhole(path, reason);
  if (!opened) return std::nullopt;
  const auto size = static_cast<size_t>(opened->size);
  FileBytes bytes;
  bytes.bytes_.reset(new char[std::max<size_t>(size, 1)]);
  AdviseLargeBuffer(bytes.bytes_.get(), size);
  // Each part reads its share of the size the file had when opened.
  const int parts = size >= (size_t{8} << 20) ? WorkPartCount() : 1;
  std::vector<int> errors(static_cast<size_t>(parts));
  std::vector<bool> whole(static_cast<size_t>(parts), true);
  RunParts(parts, [&](int k) {
    size_t at = size / parts * k;
    const size_t end = k + 1 == parts ? size : size / parts * (k + 1);
    while (at < end) {
      const ssize_t count = ::pread(opened->file.get(), bytes.bytes_.get() + at, end - at, static_cast<off_t>(at));
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) errors[k] = errno;
      if (count <= 0) break;
      at += static_cast<size_t>(count);
    }
    whole[k] = at == end;
  });
  for (const int error : errors) {
    if (!error) continue;
    if (reason) *reason = systemReason(error);
    return std::nullopt;
  }
  char probe = 0;
  const bool changed = std::find(whole.begin(), whole.end(), false) != whole.end() ||
                       ::pread(opened->file.get(), &probe, 1, static_cast<off_t>(size)) != 0;
  if (changed) {
    // The file changed while it was read (or tells no size, as the system's own files):
    // read as it is now, from its start to its end.
    std::optional<std::string> text = ReadWholeFile(path, reason);
    if (!text) return std::nullopt;
    bytes.bytes_.reset(new char[std::max<size_t>(text->size(), 1)]);
    std::copy(text->begin(), text->end(), bytes.bytes_.get());
    bytes.size_ = text->size();
    return bytes;
  }
  bytes.size_ = size;
  return bytes;
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
