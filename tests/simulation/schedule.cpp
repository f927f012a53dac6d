#include "tests/simulation/schedule.h"

#include <array>

namespace simulation {

namespace {

struct Row {
  Kind kind;
  const char* name;
  int weight;
  int values;
};
// How often each kind comes, and from how many values it takes one.
constexpr std::array kRows = {
    Row{Kind::wait, "wait", 24, 70001},
    Row{Kind::runBlocks, "run blocks", 8, 6},
    Row{Kind::pressInstall, "press install", 5, 2},
    Row{Kind::pressRetry, "press retry", 2, 2},
    Row{Kind::pressGoEnable, "press go-enable", 5, 2},
    Row{Kind::pressClose, "press close", 2, 2},
    Row{Kind::pressExit, "press exit", 1, 1},
    Row{Kind::scriptWrites, "script writes", 16, 1 << 16},
    Row{Kind::scriptEnds, "script ends", 7, 8},
    Row{Kind::notify, "notify", 12, 3},
    Row{Kind::change, "change sources", 12, 16},
    Row{Kind::changeLater, "change sources at lookup", 4, 128},
    Row{Kind::answerStatus, "answer status", 3, 8},
    Row{Kind::bundle, "bundle", 1, 3},
    Row{Kind::screen, "screen", 2, 2},
    Row{Kind::installer, "installer", 1, 4},
};

// Around every delay of an installation.
constexpr std::array kDelays = {0,     0,     500,   1000,  2499,  2500,  2501,
                                3499,  3500,  3501,  10000, 15000, 15000, 30000,
                                30000, 45000, 59000, 59999, 60000, 60001};

/// splitmix64: a schedule must be the same on every system.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  int below(int bound) {
    std::uint64_t z = state_ += 0x9e3779b97f4a7c15U;
    z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27U)) * 0x94d049bb133111ebU;
    return int((z ^ (z >> 31U)) % std::uint64_t(bound));
  }

 private:
  std::uint64_t state_;
};

Event draw(Random& random) {
  int total = 0;
  for (const Row& row : kRows) total += row.weight;
  int at = random.below(total);
  for (const Row& row : kRows) {
    if ((at -= row.weight) >= 0) continue;
    if (row.kind == Kind::wait && random.below(4) != 0)
      return {row.kind, kDelays.at(std::size_t(random.below(int(kDelays.size()))))};
    return {row.kind, random.below(row.values)};
  }
  return {Kind::runBlocks, 0};
}

}  // namespace

Schedule drawSchedule(std::uint64_t seed) {
  Random random(seed);
  Schedule events;
  for (int i = random.below(4); i > 0; --i) events.push_back({Kind::change, random.below(16)});
  if (random.below(3) == 0) events.push_back({Kind::bundle, random.below(3)});
  events.push_back({Kind::pressInstall, 0});
  for (int i = 4 + random.below(24); i > 0; --i) events.push_back(draw(random));
  return events;
}

std::string describe(const Event& event) {
  for (const Row& row : kRows)
    if (row.kind == event.kind) return std::string(row.name) + " " + std::to_string(event.value);
  return "?";
}

}  // namespace simulation
