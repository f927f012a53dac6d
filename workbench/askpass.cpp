// askpass: asks for a password in a window, or in the terminal if there is no
// display, and prints it on standard output, as sudo wants it of its SUDO_ASKPASS
// program. The exit status is 1 if there is none. It ends with the installer that
// the password is for: one typed later would still install.

#include <pwd.h>
#include <sys/prctl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "platform/bundle.h"
#include "platform/common/program_options.h"
#include "platform/linux/askpass_contract.h"
#include "platform/linux/environment.h"
#include "platform/linux/process_descriptor.h"
#include "workbench/helper_program.h"
#include "workbench/password_prompt.h"
#include "workbench/terminal_prompt.h"

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

/// The installer that the password is for.
struct Installer {
  pid_t process = 0;              // 0: somebody else has started this program
  platform::Descriptor lifeline;  // can be read once the process has ended
};

Installer installer() {
  const char* number = platform::linux_::variable(platform::linux_::kInstallerProcessVariable);
  Installer result;
  result.process = number ? std::atoi(number) : 0;
  if (result.process > 0) result.lifeline = platform::linux_::processDescriptor(result.process);
  return result;
}

int askWithoutDisplay(const std::string& prompt, const Installer& installer) {
  std::string reason;
  const pid_t foreground = installer.process > 0 ? ::getpgid(installer.process) : -1;
  const auto isGiven = askInTerminal(prompt, installer.lifeline.get(), foreground, reason);
  if (!isGiven) std::cerr << platform::linux_::kCannotAsk << ": " << reason << '\n';
  return isGiven.value_or(false) ? 0 : kNoPassword;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> prompts;
  if (const auto status = platform::parseArguments(
          "askpass", "Asks for a password with the text of its argument, and prints it.", argc,
          argv, prompts))
    return *status;

  ::prctl(PR_SET_DUMPABLE, 0);  // neither a core file nor a debugger gets the password

  const QString wanted =
      prompts.empty() ? QString() : QString::fromStdString(prompts.front()).trimmed();
  const QString text = wanted.isEmpty() ? QStringLiteral("需要管理员权限") : wanted;
  const Installer asking = installer();
  if (asking.process > 0 && !asking.lifeline && errno == ESRCH) return kNoPassword;
  if (!platform::linux_::hasDisplay() && !platform::linux_::variable("QT_QPA_PLATFORM"))
    return askWithoutDisplay(text.toStdString(), asking);

  HelperProgram program("askpass", platform::linux_::kCannotAsk, kNoPassword);
  PasswordPrompt prompt(text, userName());
  QObject::connect(&prompt, &PasswordPrompt::accepted, [](const QQuickItem* field) {
    HelperProgram::end(printAndWipe(*field) ? 0 : kNoPassword);
  });
  QObject::connect(&prompt, &PasswordPrompt::cancelled, [] { HelperProgram::end(kNoPassword); });

  std::unique_ptr<QSocketNotifier> end;
  if (asking.lifeline) {
    end = std::make_unique<QSocketNotifier>(asking.lifeline.get(), QSocketNotifier::Read);
    QObject::connect(end.get(), &QSocketNotifier::activated, &prompt, &PasswordPrompt::cancelled);
  }

  const auto bundle = QString::fromStdString(platform::bundleLocation().stem().string());
  program.keepOnTop();
  program.open(QStringLiteral("PasswordWindow"), {{"prompt", QVariant::fromValue(&prompt)}}, bundle,
               /*isClosable=*/true, [&prompt] {
                 emit prompt.cancelled();
                 return true;
               });
  return program.run();
}
