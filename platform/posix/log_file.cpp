#include "platform/log_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <system_error>
#include <utility>

#include "platform/posix/regular_file.h"

namespace platform {

namespace {

/// A file with a second name may be one that its owner wants to keep.
bool isOwnLog(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_nlink == 1 &&
         (status.st_uid == ::geteuid() || status.st_uid == 0);
}

/// The log, open for writing; none if it cannot be opened or must not be.
Descriptor openLog(const std::filesystem::path& path) {
  // Two opens, as the first must not be able to create: the kernel may refuse such
  // an open even to root, on a file of another user in a sticky folder.
  Descriptor file = openRegularFile(path, O_WRONLY | O_NOFOLLOW);
  if (!file && errno == ENOENT) {
    // The folder may not be there yet below a root of one's own.
    std::error_code ignored;
    std::filesystem::create_directories(path.parent_path(), ignored);
    file = Descriptor(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644));
  }
  struct stat status {};
  return file && ::fstat(file.get(), &status) == 0 && isOwnLog(status) ? std::move(file)
                                                                       : Descriptor();
}

}  // namespace

void emptyLogFile(const std::filesystem::path& path) {
  const Descriptor file = openLog(path);
  // Nothing can be done about a failure; a log stops nothing.
  if (file && ::ftruncate(file.get(), 0) != 0) return;
}

void appendToLogFile(const std::filesystem::path& path, std::string_view entry) {
  const Descriptor file = openLog(path);
  if (!file) return;
  ::lseek(file.get(), 0, SEEK_END);  // the write is tried even if this fails
  while (!entry.empty()) {
    const ssize_t count = ::write(file.get(), entry.data(), entry.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    entry.remove_prefix(static_cast<std::size_t>(count));
  }
}

std::optional<LogEnd> readEndOfLogFile(const std::filesystem::path& path) {
  constexpr off_t kMostBytes = 65536;
  const Descriptor file = openRegularFile(path, O_RDONLY | O_NOFOLLOW);
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0 || !isOwnLog(status)) return std::nullopt;
  std::string text(static_cast<std::size_t>(std::min(status.st_size, kMostBytes)), '\0');
  const off_t start = status.st_size - static_cast<off_t>(text.size());
  const ssize_t count = ::pread(file.get(), text.data(), text.size(), start);
  if (count < 0) return std::nullopt;
  text.resize(static_cast<std::size_t>(count));
  return LogEnd{std::move(text), std::chrono::seconds(std::time(nullptr) - status.st_mtime)};
}

bool isOwnLogFile(const std::filesystem::path& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && isOwnLog(status);
}

}  // namespace platform
