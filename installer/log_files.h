// The two log files of an installation. Paths are as the product names them.

#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>

/// Written by the install script, followed by the installer.
inline constexpr const char* kInstallLogPath = "/tmp/tessal_installer.log";
/// Written by the installer: what it did, and every piece of the install log.
inline constexpr const char* kUILogPath = "/tmp/tessal_installer_ui.log";

struct CloseFile {
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the handle that calls this owns it.
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

/// Opens an existing file for writing, its contents kept; null if it cannot be.
inline FileHandle openForWriting(const std::filesystem::path& path) {
  return FileHandle(std::fopen(path.c_str(), "r+b"));
}

/// Creates the file, or empties it if it exists; a failure is ignored.
inline void createEmptyFile(const std::filesystem::path& path) {
  FileHandle(std::fopen(path.c_str(), "wb"));
}
