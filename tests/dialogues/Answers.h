// What the framework can answer: for each call the kinds of answer that the worker tells apart,
// and, of each kind, those that mean the same to it and take turns.
#pragma once

#include <cstdint>
#include <string>

#include "tests/dialogues/Decider.h"
#include "tests/support/FakeFramework.h"

namespace kelvane::dialogues {

struct Answer {
  std::uint32_t status = 0;
  std::uint32_t value = 0;  // product identifier, interface byte or update flag
  test::FakeFramework::Progress progress = {};
};

// Statuses that a text goes with; all others have a text of no meaning.
inline constexpr std::uint32_t kUnsupported = 0x8123;        // "unsupported management command"
inline constexpr std::uint32_t kCurrent = 0x8124;            // "the version of CPLD is up to date"
inline constexpr std::uint32_t kNearlyUnsupported = 0x8125;  // the same with one letter changed
inline constexpr std::uint32_t kNearlyCurrent = 0x8126;
const char* textOf(std::uint32_t status);  // null: of no meaning

// A call whose status nobody looks at.
std::uint32_t ignoredStatus(Decider& decider);
// A call that fails or not, where nothing depends on how.
std::uint32_t plainStatus(Decider& decider);
// A call whose failure may end at the note of another process, or be tolerated for its text.
std::uint32_t judgedStatus(Decider& decider);
// A call of the USB bridge's update.
std::uint32_t usbStatus(Decider& decider);
// The call that starts the CPLD flash.
std::uint32_t cpldStartStatus(Decider& decider);

// A product identifier, of each of these kinds, and which it is:
//   u standard, with a USB image    s standard, without one    q QVXF    x no path of its own
std::uint16_t productIdentifier(Decider& decider, const std::string& kinds, char& kind);

// The byte of the interface that a bridge shows by 1, and whether its firmware differs.
std::uint32_t interfaceByte(Decider& decider);
std::uint32_t updateFlag(Decider& decider);

// A progress read, whole or failed. `before` is the record as it stands; in the last poll only what
// ends the polling.
using Progress = test::FakeFramework::Progress;
Progress cpldProgress(Decider& decider, const Progress& before, bool isLast);
Progress flashProgress(Decider& decider, const Progress& before, bool isLast);

}  // namespace kelvane::dialogues
