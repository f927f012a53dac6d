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

/// Creates the file if there is none; a failure is ignored.
inline void createIfMissing(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::exists(path, error)) FileHandle(std::fopen(path.c_str(), "ab"));
}

/// Empties the file, or creates it if there is none; a failure is ignored.
inline void emptyFile(const std::filesystem::path& path) {
  createIfMissing(path);
  // Not by an open that could create it: the kernel may refuse that even to root on
  // another user's file in a sticky folder.
  std::error_code error;
  std::filesystem::resize_file(path, 0, error);
}
