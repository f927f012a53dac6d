// Any bytes as the state file of the input-source service: it is read, changed
// and never lost.

#include "platform/linux/input_source_state.h"

#include <filesystem>
#include <fstream>

#include "platform/linux/file_root_linux.h"
#include "platform/linux/input_source_service.h"
#include "tests/fuzz/require.h"

using namespace platform;
using namespace platform::linux_;
namespace fs = std::filesystem;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fs::path root = [] {
    std::string pattern = fs::temp_directory_path() / "orvane-fuzz-XXXXXX";
    static fs::path made = ::mkdtemp(pattern.data());
    std::atexit([] { fs::remove_all(made); });
    setFileRoot(made);
    fs::create_directories(userStore());
    return made;
  }();
  const fs::path file = userStore() / "InputSources.plist";
  const fs::path kept = file.string() + ".damaged";
  std::error_code error;
  fs::remove(kept, error);
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));

  auto wanted = readInputSourceState();
  const bool isDamaged = !readPropertyListDictionary(file);
  // The built-in layout is always there, and one source is current.
  const auto sources = installedInputSources();
  require(!sources.empty() && sources.front().id == kBuiltInLayoutId);
  int current = 0;
  for (const auto& source : sources) current += source.isCurrent ? 1 : 0;
  require(current == 1);

  wanted.enabled.insert("added");
  const Status status = changeInputSourceState([&](InputSourceState& state) {
    state.enabled.insert("added");
    return kNoError;
  });
  if (status == kNoError) {
    require(readInputSourceState() == wanted);
    require(!isDamaged || fs::file_size(kept, error) == size);
  } else {
    require(fs::file_size(file, error) == size || fs::file_size(kept, error) == size);
  }
  return 0;
}
