#include "platform/admin_script.h"

#include "tests/platform/test_platform.h"

namespace platform {

std::optional<AdminScriptError> executeAdminScript(const std::string& source) {
  test::note("execute " + source);
  if (test::active->duringAdminScript) test::active->duringAdminScript();
  return test::active->adminScriptError;
}

}  // namespace platform
