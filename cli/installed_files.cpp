#include "cli/installed_files.h"

#include "inputsource/tessal_installer.h"
#include "platform/file_root.h"
#include "platform/user_library.h"

namespace fs = std::filesystem;

std::vector<fs::path> installedBundles() {
  return {TessalInstaller::appDir(), "/Applications/Sondrel.app", "/Applications/Cogwen.app"};
}

std::vector<fs::path> leftovers() {
  std::vector<fs::path> found;
  for (const char* folder : {"/Library/Input Methods", "/Applications"}) {
    std::error_code error;
    for (fs::directory_iterator entry(platform::onDisk(folder), error), end; !error && entry != end;
         entry.increment(error)) {
      // The names that the installation script uses.
      const std::string name = entry->path().filename().string();
      for (const fs::path& bundle : installedBundles())
        if (name.starts_with('.') && name.find(bundle.filename().string() + ".") == 1)
          found.push_back(entry->path());
    }
  }
  return found;
}

fs::path activationStamp() {
  return platform::userLibrary() / "Application Support" / "Orvane Installer" / "activated";
}
