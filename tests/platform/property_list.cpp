#include "platform/property_list.h"

#include "tests/platform/test_platform.h"

namespace platform {

std::optional<PropertyListDictionary> readPropertyListDictionary(
    const std::filesystem::path& file) {
  return test::valueIn(test::active->propertyLists, file);
}

}  // namespace platform
