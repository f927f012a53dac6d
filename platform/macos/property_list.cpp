#include "platform/property_list.h"

#include <fstream>
#include <iterator>

#include "platform/macos/cf_conversions.h"
#include "platform/macos/cf_ref.h"

namespace platform {

std::optional<PropertyListDictionary> readPropertyListDictionary(
    const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(stream), {});
  const auto data = adopt(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                       static_cast<CFIndex>(bytes.size())));
  const auto list = adopt(CFPropertyListCreateWithData(nullptr, data.get(),
                                                       kCFPropertyListImmutable, nullptr, nullptr));
  const auto value = toPropertyListValue(list.get());
  const auto* dictionary = value ? value->as<PropertyListDictionary>() : nullptr;
  if (dictionary == nullptr) return std::nullopt;
  return *dictionary;
}

}  // namespace platform
