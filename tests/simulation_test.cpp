// Whole installations by random schedules on the virtual clock. A failure prints
// its seed and the fewest events that still break the rule.
//   simulation_test [--schedules N] [--seed S]   S alone: that schedule, told

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "tests/simulation/schedule.h"
#include "tests/simulation/world.h"

namespace {

using simulation::Schedule;

/// The rule that breaks; absent if all hold.
std::optional<std::string> run(simulation::Folders& folders, const Schedule& schedule) {
  simulation::World world(folders);
  try {
    for (const auto& event : schedule) world.apply(event);
    world.end();
  } catch (const simulation::Broken& broken) {
    return broken.what();
  }
  return std::nullopt;
}

/// Drops events as long as the same rule breaks.
Schedule shrunk(simulation::Folders& folders, Schedule schedule, const std::string& rule) {
  for (std::size_t length = schedule.size(); length > 0; length /= 2) {
    for (std::size_t at = 0; at + length <= schedule.size();) {
      Schedule shorter = schedule;
      const auto first = shorter.begin() + std::ptrdiff_t(at);
      shorter.erase(first, first + std::ptrdiff_t(length));
      if (run(folders, shorter) == rule)
        schedule = shorter;
      else
        at += length;
    }
  }
  return schedule;
}

/// What each value means: tests/simulation/schedule.h.
void tell(const Schedule& schedule) {
  for (const auto& event : schedule) std::printf("  %s\n", describe(event).c_str());
}

}  // namespace

int main(int argc, char** argv) {
  std::uint64_t first = 1;
  std::uint64_t count = 10'000;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::uint64_t number = std::strtoull(argv[i + 1], nullptr, 10);
    if (argv[i] == std::string("--seed"))
      first = number, count = argc > 3 ? count : 1;
    else
      count = number;
  }

  simulation::Folders folders;
  for (std::uint64_t seed = first; seed - first < count; ++seed) {
    const Schedule schedule = simulation::drawSchedule(seed);
    if (count == 1) tell(schedule);
    const auto rule = run(folders, schedule);
    if (!rule) continue;
    std::printf("seed %llu: %s\n", static_cast<unsigned long long>(seed), rule->c_str());
    tell(shrunk(folders, schedule, *rule));
    return 1;
  }
  std::printf("%llu schedules from seed %llu: every rule holds\n",
              static_cast<unsigned long long>(count), static_cast<unsigned long long>(first));
  return 0;
}
