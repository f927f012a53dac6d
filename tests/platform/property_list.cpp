#include "platform/property_list.h"

#include "tests/platform/test_platform.h"

namespace platform {

bool operator==(const OpaqueValue& left, const OpaqueValue& right) {
  return left.object == right.object && left.isDictionary == right.isDictionary;
}

std::optional<PropertyListDictionary> readPropertyListDictionary(
    const std::filesystem::path& file) {
  return test::valueIn(test::active->propertyLists, file);
}

}  // namespace platform
