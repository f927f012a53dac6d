#include "platform/property_list.h"

#include "platform/linux/property_list_codec.h"
#include "platform/linux/property_list_limits.h"
#include "platform/posix/regular_file.h"

namespace platform {

std::optional<PropertyListDictionary> readPropertyListDictionary(
    const std::filesystem::path& file) {
  // One byte more than is allowed, so that the codec sees that it is too much.
  const auto bytes = readRegularFile(file, linux_::kPropertyListSizeLimit + 1);
  const auto value = bytes ? linux_::decodePropertyList(*bytes) : std::nullopt;
  const auto* dictionary = value ? value->as<PropertyListDictionary>() : nullptr;
  return dictionary ? std::optional(*dictionary) : std::nullopt;
}

}  // namespace platform
