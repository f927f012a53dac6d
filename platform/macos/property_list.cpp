#include "platform/property_list.h"

#include "platform/common/property_list_limits.h"
#include "platform/macos/cf_conversions.h"
#include "platform/macos/cf_ref.h"
#include "platform/posix/regular_file.h"

namespace platform {

std::optional<PropertyListDictionary> readPropertyListDictionary(
    const std::filesystem::path& file) {
  const auto bytes = readRegularFile(file, kPropertyListSizeLimit + 1);
  if (!bytes || bytes->size() > kPropertyListSizeLimit) return std::nullopt;
  const auto data = adopt(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes->data()),
                                       static_cast<CFIndex>(bytes->size())));
  const auto list = adopt(CFPropertyListCreateWithData(nullptr, data.get(),
                                                       kCFPropertyListImmutable, nullptr, nullptr));
  const auto value = toPropertyListValue(list.get(), /*isLimited=*/true);
  const auto* dictionary = value ? value->as<PropertyListDictionary>() : nullptr;
  return dictionary ? std::optional(*dictionary) : std::nullopt;
}

}  // namespace platform
