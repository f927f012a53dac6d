#include "platform/accounts.h"

#include "tests/platform/test_platform.h"

namespace platform {

std::string ownerAndGroup(const std::filesystem::path& path) {
  return test::valueIn(test::active->owners, path).value_or("root:wheel");
}

bool isAdministrator() {
  return test::active->isAdministrator;
}

}  // namespace platform
