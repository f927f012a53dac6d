// The end of a log, for people.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// The last lines of a file, `most` at most and of its last 64 KiB only; none
/// unless it is a regular file that can be read.
std::vector<std::string> lastLines(const std::filesystem::path& file, std::size_t most);
