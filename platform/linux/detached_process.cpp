#include "platform/linux/detached_process.h"

#include <sys/wait.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <memory>
#include <utility>

#include "platform/linux/process_descriptor.h"
#include "platform/posix/spawn.h"

namespace platform::linux_ {

namespace {

/// Reaps the program if it ends before this process; else the system does.
void reapAtItsEnd(pid_t child) {
  Descriptor process = processDescriptor(child);
  if (!process || !QCoreApplication::instance()) return;
  const int descriptor = process.get();
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the application owns it
  auto* const notifier =
      new QSocketNotifier(descriptor, QSocketNotifier::Read, QCoreApplication::instance());
  QObject::connect(notifier, &QSocketNotifier::activated,
                   [child, notifier, owner = std::make_shared<Descriptor>(std::move(process))] {
                     ::waitpid(child, nullptr, WNOHANG);
                     notifier->setEnabled(false);
                     notifier->deleteLater();
                   });
}

}  // namespace

bool startDetached(const std::filesystem::path& program,
                   const std::vector<std::string>& arguments) {
  SpawnOptions options;
  options.standardInput = options.standardOutput = options.standardError = kNullDevice;
  options.ownSession = true;
  pid_t child = 0;
  if (spawn(child, program.string(), arguments, options) != 0) return false;
  reapAtItsEnd(child);
  return true;
}

}  // namespace platform::linux_
