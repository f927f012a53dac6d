// The root below which a program of the workbench keeps everything.

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_root.h"

namespace platform::linux_ {

/// Makes the product's absolute paths and the user's stores lie below this
/// absolute folder. Before other threads run and before any service is used.
void setFileRoot(const std::filesystem::path& folder);

/// Whether there was one. Any thread.
bool isFileRootGiven();

/// The folder given to setFileRoot(); absent for "/", which means the real places. Any thread.
std::optional<std::filesystem::path> fileRoot();

/// Puts the user's stores into this absolute folder, as those of another account.
/// Before any service is used.
void setUserStore(const std::filesystem::path& folder);

/// The options that start a child on the same root and with the same stores:
/// "--root" and "--home" with their folders, as far as they were given. Any thread.
std::vector<std::string> rootArguments();

/// The folder of this user's stores (preferences, input sources, registered
/// applications); it need not exist yet. Any thread.
std::filesystem::path userStore();

}  // namespace platform::linux_
