// askpass [PROMPT]: asks for a password in a window and prints it, as sudo wants of
// its SUDO_ASKPASS program. The exit status is not 0 if the user gave none.

#include <pwd.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "platform/bundle.h"
#include "platform/linux/askpass_contract.h"
#include "ui/installer_ui.h"
#include "workbench/helper_window.h"

namespace {

/// The full name of the account whose password is asked for, else its login name.
QString userName() {
  const passwd* account = ::getpwuid(::getuid());
  if (!account) return QString::number(::getuid());
  const QString fullName = QString::fromLocal8Bit(account->pw_gecos).section(',', 0, 0);
  return fullName.isEmpty() ? QString::fromLocal8Bit(account->pw_name) : fullName;
}

}  // namespace

int main(int argc, char** argv) {
  ::prctl(PR_SET_DUMPABLE, 0);  // neither a core file nor a debugger gets the password
  qputenv("QT_LOGGING_RULES", "*.debug=false");  // they name the pressed keys

  const auto application = startToolkit(argv, platform::linux_::kCannotAsk);
  QQmlApplicationEngine engine;
  const QObject* const window = openHelperWindow(
      engine, QStringLiteral("PasswordWindow"),
      {{"title", QString::fromStdString(platform::bundleLocation().stem().string())},
       {"prompt", argc > 1 ? QString::fromUtf8(argv[1]) : QStringLiteral("需要管理员权限")},
       {"userName", userName()}});
  QGuiApplication::exec();
  if (!window->property("isAccepted").toBool()) return EXIT_FAILURE;
  std::cout << window->property("password").toString().toStdString() << std::endl;
  return std::cout ? EXIT_SUCCESS : EXIT_FAILURE;
}
