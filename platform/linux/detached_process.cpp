#include "platform/linux/detached_process.h"

#include <QProcess>

namespace platform::linux_ {

bool startDetached(const std::filesystem::path& program,
                   const std::vector<std::string>& arguments) {
  QStringList words;
  for (const std::string& argument : arguments) words << QString::fromStdString(argument);
  QProcess process;
  process.setProgram(QString::fromStdString(program.string()));
  process.setArguments(words);
  process.setStandardInputFile(QProcess::nullDevice());
  process.setStandardOutputFile(QProcess::nullDevice());
  process.setStandardErrorFile(QProcess::nullDevice());
  return process.startDetached();
}

}  // namespace platform::linux_
