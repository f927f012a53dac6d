#include "platform/posix/regular_file.h"

#include <sys/stat.h>

#include <algorithm>

namespace platform {

Descriptor openRegularFile(const std::filesystem::path& path, int flags) {
  // The open of a pipe would wait for its other end.
  Descriptor file(::open(path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0) return {};
  if (S_ISREG(status.st_mode)) return file;
  errno = EINVAL;
  return {};
}

std::optional<std::string> readRegularFile(const std::filesystem::path& path, std::size_t limit) {
  const Descriptor file = openRegularFile(path, O_RDONLY);
  if (!file) return std::nullopt;
  std::string content;
  std::array<char, 64 * 1024> buffer;
  while (content.size() < limit) {
    const ssize_t count =
        ::read(file.get(), buffer.data(), std::min(buffer.size(), limit - content.size()));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    content.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return content;
}

}  // namespace platform
