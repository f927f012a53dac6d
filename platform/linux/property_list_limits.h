// What may be given to libplist. It calls itself for every level of nesting, ends
// the process at a key with a NUL, and takes a time that grows with the square of
// the number of values to write the binary form, where a few bytes can stand for
// any number of them. So bytes are looked through before it gets them. Any thread.

#pragma once

#include <cstddef>
#include <string_view>

namespace platform::linux_ {

/// Far above what preferences and information dictionaries hold.
inline constexpr std::size_t kPropertyListSizeLimit = std::size_t{4} << 20;
inline constexpr std::size_t kPropertyListDepthLimit = 128;
/// Values and keys, each counted as often as it is used.
inline constexpr std::size_t kPropertyListValueLimit = 20'000;

/// Whether the bytes claim to be a binary property list.
bool isBinaryPropertyList(std::string_view bytes);

/// Whether libplist can read these binary bytes without harm: within the limits,
/// every object inside the bytes, and text without NUL.
bool isSafeBinaryPropertyList(std::string_view bytes);

/// The same for XML: well-formed UTF-8 within the limits, without NUL and without
/// declarations of its own.
bool isSafeXmlPropertyList(std::string_view bytes);

}  // namespace platform::linux_
