// Programs that outlive this one.

#pragma once

#include <QProcess>
#include <QStringList>
#include <filesystem>
#include <string>
#include <vector>

namespace platform::linux_ {

/// Starts a program in a session of its own, without standard streams, so that
/// whoever reads ours sees them end. Whether it has started. Main thread.
inline bool startDetached(const std::filesystem::path& program,
                          const std::vector<std::string>& arguments) {
  QStringList list;
  for (const auto& argument : arguments) list << QString::fromStdString(argument);
  QProcess process;
  process.setProgram(QString::fromStdString(program.string()));
  process.setArguments(list);
  process.setStandardInputFile(QProcess::nullDevice());
  process.setStandardOutputFile(QProcess::nullDevice());
  process.setStandardErrorFile(QProcess::nullDevice());
  return process.startDetached();
}

}  // namespace platform::linux_
