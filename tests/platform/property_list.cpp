#include "platform/property_list.h"

#include "tests/platform/test_platform.h"

namespace platform {

std::optional<PropertyListDictionary> readPropertyListDictionary(
    const std::filesystem::path& file) {
  const auto found = test::active->propertyLists.find(file);
  if (found == test::active->propertyLists.end()) return std::nullopt;
  return found->second;
}

}  // namespace platform
