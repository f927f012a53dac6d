#include "platform/admin_rights.h"

#include "tests/platform/test_platform.h"

namespace platform {

AdminRights adminRights() {
  return test::active->adminRights;
}

}  // namespace platform
