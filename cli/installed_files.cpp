#include "cli/installed_files.h"

#include "inputsource/tessal_installer.h"
#include "platform/file_root.h"

namespace fs = std::filesystem;

std::vector<fs::path> installedBundles() {
  return {TessalInstaller::appDir(), "/Applications/Sondrel.app", "/Applications/Cogwen.app"};
}

std::vector<fs::path> leftovers() {
  std::vector<fs::path> found;
  std::error_code error;
  for (fs::directory_iterator
           entry(platform::onDisk(TessalInstaller::appDir().parent_path()), error),
       end;
       !error && entry != end; entry.increment(error))
    // The names that the installation script uses.
    if (entry->path().filename().string().starts_with(".Orvane.app.")) found.push_back(*entry);
  return found;
}

fs::path activationStamp() {
  return platform::userLibrary() / "Application Support" / "Orvane Installer" / "activated";
}
