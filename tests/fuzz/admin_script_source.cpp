// The parser of the script source: what it takes is what composing gives back.

#include "platform/common/admin_script_source.h"

#include "tests/fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string source(reinterpret_cast<const char*>(data), size);
  const auto script = platform::parseAdminScriptSource(source);
  if (!script) return 0;
  require(composeAdminScriptSource(*script) == source);
  require(source.find('\n') == std::string::npos || script->path.find('\n') != std::string::npos ||
          script->prompt.find('\n') != std::string::npos);
  return 0;
}
