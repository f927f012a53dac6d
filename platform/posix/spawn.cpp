#include "platform/posix/spawn.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <csignal>
#include <string_view>
#include <utility>

#ifdef __APPLE__
#include <crt_externs.h>
#else
extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX has no header for it
#endif

namespace platform {
namespace {

char** currentEnvironment() {
#ifdef __APPLE__
  return *_NSGetEnviron();
#else
  return environ;
#endif
}

std::vector<std::string> withAdditions(const Environment& additions) {
  std::vector<std::string> variables;
  for (char** variable = currentEnvironment(); *variable; ++variable) {
    const std::string_view text = *variable;
    if (!additions.contains(std::string(text.substr(0, text.find('=')))))
      variables.emplace_back(text);
  }
  for (const auto& [name, value] : additions)
    variables.push_back(std::string(name).append("=").append(value));
  return variables;
}

/// The form that exec wants; valid as long as `texts` is.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

class FileActions {
 public:
  FileActions() { posix_spawn_file_actions_init(&actions_); }
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;

  void set(int standard, int source) {
    if (source == kNullDevice)
      posix_spawn_file_actions_addopen(&actions_, standard, "/dev/null", O_RDWR, 0);
    else if (source >= 0)
      posix_spawn_file_actions_adddup2(&actions_, source, standard);
#ifdef POSIX_SPAWN_CLOEXEC_DEFAULT
    else
      posix_spawn_file_actions_addinherit_np(&actions_, standard);
#endif
  }
  const posix_spawn_file_actions_t* get() const {
    return &actions_;
  }

 private:
  posix_spawn_file_actions_t actions_{};
};

class Attributes {
 public:
  explicit Attributes(const SpawnOptions& options) {
    posix_spawnattr_init(&attributes_);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes_, &none);
    sigset_t ignored;
    sigemptyset(&ignored);
    sigaddset(&ignored, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes_, &ignored);
    int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    if (options.ownGroup) {
      posix_spawnattr_setpgroup(&attributes_, 0);
      flags |= POSIX_SPAWN_SETPGROUP;
    }
    if (options.ownSession) flags |= POSIX_SPAWN_SETSID;
#ifdef POSIX_SPAWN_CLOEXEC_DEFAULT
    flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#endif
    posix_spawnattr_setflags(&attributes_, static_cast<short>(flags));
  }
  ~Attributes() {
    posix_spawnattr_destroy(&attributes_);
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  const posix_spawnattr_t* get() const {
    return &attributes_;
  }

 private:
  posix_spawnattr_t attributes_{};
};

}  // namespace

int spawn(pid_t& child, const std::string& program, const std::vector<std::string>& arguments,
          const SpawnOptions& options) {
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables = withAdditions(options.environment);
  FileActions actions;
  actions.set(STDIN_FILENO, options.standardInput);
  actions.set(STDOUT_FILENO, options.standardOutput);
  actions.set(STDERR_FILENO, options.standardError);
  const Attributes attributes(options);
  return posix_spawnp(&child, program.c_str(), actions.get(), attributes.get(),
                      pointersTo(words).data(), pointersTo(variables).data());
}

}  // namespace platform
