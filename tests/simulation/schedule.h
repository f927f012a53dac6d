// What happens to a simulated installation: a list of events drawn from a seed.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace simulation {

enum class Kind {
  wait,           // ten-thousandths of a second
  runBlocks,      // so many blocks of the main queue
  pressInstall,   // 0: if the button is shown; 1: anyway
  pressRetry,     // the same, after a refused authorisation
  pressGoEnable,  // the same
  pressClose,     // 1: a window that may close is gone
  pressExit,      // if the confirmation is shown
  scriptWrites,   // a phrase, and where the piece is cut
  scriptEnds,     // how
  notify,         // so many notifications
  change,         // of the input-source service
  changeLater,    // the same, at the next lookups
  answerStatus,   // what the next calls of a kind answer
  bundle,         // what lies at the install location
  screen,         // the waiting screen leaves or comes
  installer,      // its script or its follower is missing, or back
};

struct Event {
  Kind kind;
  int value;
};
using Schedule = std::vector<Event>;

Schedule drawSchedule(std::uint64_t seed);
std::string describe(const Event& event);

}  // namespace simulation
