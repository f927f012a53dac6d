#include "platform/property_list.h"

#include "platform/macos/cf_conversions.h"
#include "platform/macos/cf_ref.h"
#include "platform/posix/regular_file.h"

namespace platform {

namespace {

/// Far above what an information dictionary holds.
constexpr std::size_t kSizeLimit = std::size_t{4} << 20;

}  // namespace

std::optional<PropertyListDictionary> readPropertyListDictionary(
    const std::filesystem::path& file) {
  const auto bytes = readRegularFile(file, kSizeLimit + 1);
  if (!bytes || bytes->size() > kSizeLimit) return std::nullopt;
  const auto data = adopt(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes->data()),
                                       static_cast<CFIndex>(bytes->size())));
  const auto list = adopt(CFPropertyListCreateWithData(nullptr, data.get(),
                                                       kCFPropertyListImmutable, nullptr, nullptr));
  const auto value = toPropertyListValue(list.get());
  const auto* dictionary = value ? value->as<PropertyListDictionary>() : nullptr;
  if (dictionary == nullptr) return std::nullopt;
  return *dictionary;
}

}  // namespace platform
