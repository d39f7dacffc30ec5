#include "tests/dialogues/Answers.h"

#include <algorithm>
#include <initializer_list>
#include <map>
#include <vector>

namespace kelvane::dialogues {
namespace {

using Codes = std::vector<std::uint32_t>;
using Bytes = std::vector<std::uint8_t>;

// Failures without a meaning of their own anywhere; the statuses that the worker makes itself are
// none either where the framework gives them.
const Codes& meaningless() {
  static const Codes codes = {
      0x1234,        0x0101, 0x0402, 0x8054, 0x8055, 0x8057, 0x0001, 0xFFFFFFFF, kNearlyUnsupported,
      kNearlyCurrent};
  return codes;
}

Codes with(std::initializer_list<std::uint32_t> more) {
  Codes codes = meaningless();
  codes.insert(codes.end(), more);
  return codes;
}

template <typename List>
auto oneOf(Decider& decider, const List& list) {
  return list[decider.turn(static_cast<unsigned>(list.size()))];
}

// The last branch is any of the others, by turns.
std::uint32_t branched(Decider& decider, const Codes& told, const Codes& others) {
  const unsigned pick = decider.branch(static_cast<unsigned>(told.size()) + 1);
  return pick < told.size() ? told[pick] : oneOf(decider, others);
}

// One kind of progress report. Its bytes take turns among those of each list.
struct Report {
  enum class Retries { same, changed, either };
  bool endsPolling;
  Bytes statuses;
  Bytes stages;
  Bytes percents;
  Retries retries = Retries::same;
};

const Bytes kAny = {0, 37, 100, 255};
const Bytes kEven = {0, 36, 100, 254};
const Bytes kOdd = {1, 37, 99, 255};

const std::vector<Report>& cpldReports() {
  using enum Report::Retries;
  static const std::vector<Report> reports = {
      {true, {0}, {2}, kAny, same},
      {true, {0}, {2}, kAny, changed},
      {true, {1}, {0, 1, 2, 3}, kAny, either},
      {true, {2}, {0, 1, 2, 3}, kAny, either},
      {false, {0}, {0}, kEven, same},
      {false, {0}, {0}, kOdd, same},
      {false, {0}, {1}, kEven, same},
      {false, {0}, {1}, kOdd, same},
      {false, {0}, {3, 5, 255}, kAny, same},
      {false, {0}, {0}, kAny, changed},
      {false, {0}, {1}, kAny, changed},
      {false, {0}, {3, 5, 255}, kAny, changed},
      {false, {3, 4, 128, 255}, {0, 1, 2, 5}, kAny, same},
      {false, {3, 4, 128, 255}, {0, 1, 2, 5}, kAny, changed},
  };
  return reports;
}

const std::vector<Report>& flashReports() {
  static const std::vector<Report> reports = {
      {true, {0}, {5}, kAny},
      {true, {1}, {0, 2, 4, 5}, kAny},
      {true, {3}, {0, 2, 4, 5}, kAny},
      {false, {0}, {0, 2, 4, 6, 255}, kEven},
      {false, {0}, {0, 2, 4, 6, 255}, kOdd},
      {false, {2}, {5}, kAny},
      {false, {2}, {0, 2, 4, 6}, kAny},
      {false, {4, 5, 7, 9, 129, 131, 255}, {0, 2, 5}, kAny},
  };
  return reports;
}

Progress filled(Decider& decider, const Report& report, const Progress& before) {
  Progress progress{oneOf(decider, report.statuses), oneOf(decider, report.stages),
                    oneOf(decider, report.percents), before.retries};
  const bool changes = report.retries == Report::Retries::changed ||
                       (report.retries == Report::Retries::either && decider.turn(2) == 1);
  if (changes) {
    progress.retries = static_cast<std::uint8_t>(before.retries + oneOf(decider, Bytes{1, 2, 255}));
  }
  return progress;
}

// The reports of a read that succeeded, of one that failed with the record written, and a failed
// one that leaves it. What the status of a failed one is nobody asks.
Progress progress(Decider& decider, const std::vector<Report>& reports, const Progress& before,
                  bool isLast) {
  const auto all = static_cast<unsigned>(reports.size());
  unsigned succeeding = 0;  // those that end the polling come first
  while (succeeding < all && (!isLast || reports[succeeding].endsPolling)) ++succeeding;
  const unsigned pick = decider.fork(succeeding + all + 1);
  if (pick < succeeding) return filled(decider, reports[pick], before);
  Progress failed = before;
  if (pick < succeeding + all) failed = filled(decider, reports[pick - succeeding], before);
  failed.leavesRecord = pick == succeeding + all;
  failed.callStatus = oneOf(decider, with({0x8050, 0x0105, 0x4027, kUnsupported, kCurrent}));
  return failed;
}

bool holds(const Bytes& bytes, std::uint8_t byte) {
  return std::find(bytes.begin(), bytes.end(), byte) != bytes.end();
}

// The last kind has all that the others have not.
std::map<char, Bytes> highBytesByKind() {
  const Bytes withUsbImage = {0x43, 0x44, 0x45, 0x46, 0x47, 0x88};
  const Bytes qvxf = {0x48, 0x49};
  constexpr std::uint8_t kWithoutUsbImage = 0x42;
  Bytes others;
  for (unsigned byte = 0; byte <= 0xFF; ++byte) others.push_back(static_cast<std::uint8_t>(byte));
  std::erase_if(others, [&](std::uint8_t byte) {
    return byte == kWithoutUsbImage || holds(withUsbImage, byte) || holds(qvxf, byte);
  });
  return {{'u', withUsbImage}, {'s', {kWithoutUsbImage}}, {'q', qvxf}, {'x', others}};
}

}  // namespace

const char* textOf(std::uint32_t status) {
  switch (status) {
    case kUnsupported:
      return "unsupported management command";
    case kCurrent:
      return "the version of CPLD is up to date";
    case kNearlyUnsupported:
      return "unsupported management command.";
    case kNearlyCurrent:
      return "The version of CPLD is up to date";
    default:
      return nullptr;
  }
}

std::uint32_t ignoredStatus(Decider& decider) {
  return oneOf(decider, with({0, 0, 0, 0x8050, 0x4027, kUnsupported, kCurrent}));
}

std::uint32_t plainStatus(Decider& decider) {
  return branched(decider, {0}, with({0x8050, 0x0105, 0x4027, 0x8058, kUnsupported, kCurrent}));
}

std::uint32_t judgedStatus(Decider& decider) {
  return branched(decider, {0, 0x8050, kUnsupported, kCurrent}, with({0x0105, 0x4027, 0x8058}));
}

std::uint32_t usbStatus(Decider& decider) {
  return branched(decider, {0, 0x0105, 0x4027}, with({0x8050, 0x8058, kUnsupported, kCurrent}));
}

std::uint32_t cpldStartStatus(Decider& decider) {
  return branched(decider, {0, 0x8058, 0x8050, kUnsupported, kCurrent}, with({0x0105, 0x4027}));
}

std::uint16_t productIdentifier(Decider& decider, const std::string& kinds, char& kind) {
  static const std::map<char, Bytes> kHighBytes = highBytesByKind();
  kind = kinds[decider.fork(static_cast<unsigned>(kinds.size()))];
  const unsigned high = oneOf(decider, kHighBytes.at(kind));
  return static_cast<std::uint16_t>((high << 8U) | oneOf(decider, Bytes{0x01, 0x00, 0x42, 0xFF}));
}

std::uint32_t interfaceByte(Decider& decider) {
  static constexpr std::uint32_t kBytes[][3] = {{1, 1, 1}, {0, 0, 0}, {2, 128, 255}};
  const unsigned pick = decider.fork(3);
  return kBytes[pick][decider.turn(3)];
}

std::uint32_t updateFlag(Decider& decider) {
  static constexpr std::uint32_t kFlags[] = {1, 2, 256, 0xFFFFFFFF};
  return decider.fork(2) == 0 ? kFlags[decider.turn(4)] : 0;
}

Progress cpldProgress(Decider& decider, const Progress& before, bool isLast) {
  return progress(decider, cpldReports(), before, isLast);
}

Progress flashProgress(Decider& decider, const Progress& before, bool isLast) {
  return progress(decider, flashReports(), before, isLast);
}

}  // namespace kelvane::dialogues
