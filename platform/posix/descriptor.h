// File descriptors and their owner.

#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace platform {

/// Owns a file descriptor, or none: it closes it when it goes.
class Descriptor {
 public:
  Descriptor() = default;
  /// Takes what a system call returned; a negative number means none.
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  /// Closes it; errno stays as it was.
  ~Descriptor() {
    const int error = errno;
    if (descriptor_ >= 0) ::close(descriptor_);
    errno = error;
  }
  Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }

  /// Negative if there is none.
  int get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }

 private:
  int descriptor_ = -1;
};

struct Pipe {
  Descriptor readEnd;
  Descriptor writeEnd;
};

/// A pipe that no child inherits. Both ends are none on failure, with errno set.
inline Pipe makePipe() {
  std::array<int, 2> ends{};
#ifdef __linux__
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {};
#else
  // Elsewhere children are started with all descriptors closed by default.
  if (::pipe(ends.data()) != 0) return {};
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
#endif
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

}  // namespace platform
