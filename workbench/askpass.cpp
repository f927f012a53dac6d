// askpass: asks for a password in a window and prints it on standard output, as
// sudo wants it of its SUDO_ASKPASS program. The exit status is 1 if there is none.

#include <pwd.h>
#include <sys/prctl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <string>

#include "cli/program_options.h"
#include "platform/bundle.h"
#include "workbench/helper_program.h"
#include "workbench/password_prompt.h"

namespace {

constexpr int kNoPassword = 1;

/// The full name of the account whose password is asked for, else its login name.
QString userName() {
  const passwd* account = ::getpwuid(::getuid());
  if (!account) return QString::number(::getuid());
  const QString fullName = QString::fromLocal8Bit(account->pw_gecos).section(',', 0, 0);
  return fullName.isEmpty() ? QString::fromLocal8Bit(account->pw_name) : fullName;
}

void wipe(const void* memory, std::size_t size) {
  ::explicit_bzero(const_cast<void*>(memory), size);
}

/// Prints the field's text and wipes it. Whether all of it was written.
bool printAndWipe(const QQuickItem& field) {
  const QString text = field.property("text").toString();  // shares the field's own memory
  const QByteArray bytes = text.toUtf8();
  char lineEnd = '\n';
  const std::array<iovec, 2> line{
      {{const_cast<char*>(bytes.constData()), static_cast<std::size_t>(bytes.size())},
       {&lineEnd, 1}}};
  const bool isWritten = ::writev(STDOUT_FILENO, line.data(), line.size()) == bytes.size() + 1;
  wipe(bytes.constData(), static_cast<std::size_t>(bytes.size()));
  wipe(text.constData(), static_cast<std::size_t>(text.size()) * sizeof(QChar));
  return isWritten;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App commandLine("Asks for a password and prints it.", "askpass");
  std::string given;
  commandLine.add_option("PROMPT", given, "what the window says");
  addCommonOptions(commandLine);
  if (const auto status = parseArguments(commandLine, argc, argv)) return *status;

  ::prctl(PR_SET_DUMPABLE, 0);  // neither a core file nor a debugger gets the password

  HelperProgram program("askpass", kNoPassword);
  const QString text = QString::fromLocal8Bit(given.c_str()).trimmed();
  PasswordPrompt prompt(text.isEmpty() ? QStringLiteral("需要管理员权限") : text, userName());
  QObject::connect(&prompt, &PasswordPrompt::accepted, [](const QQuickItem* field) {
    HelperProgram::end(printAndWipe(*field) ? 0 : kNoPassword);
  });
  QObject::connect(&prompt, &PasswordPrompt::cancelled, [] { HelperProgram::end(kNoPassword); });

  const auto bundle = QString::fromStdString(platform::bundleLocation().stem().string());
  program.keepOnTop();
  program.open(QStringLiteral("PasswordWindow"), {{"prompt", QVariant::fromValue(&prompt)}}, bundle,
               /*isClosable=*/true, [&prompt] {
                 emit prompt.cancelled();
                 return true;
               });
  return program.run();
}
