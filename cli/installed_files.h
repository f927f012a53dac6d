// What an installation puts on the disk.

#pragma once

#include <filesystem>
#include <vector>

/// The bundles that the installation script knows, without the root.
std::vector<std::filesystem::path> installedBundles();

/// What a run that was killed has left of them, and what a finished one could not
/// delete.
std::vector<std::filesystem::path> leftovers();

/// A folder that notes, by being there, that `activate` has succeeded for this user. To
/// make a folder follows no link and waits for nobody.
std::filesystem::path activationStamp();
