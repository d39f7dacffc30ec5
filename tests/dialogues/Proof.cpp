#include "tests/dialogues/Proof.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "Kelvane.h"
#include "log/iLog.h"
#include "tests/dialogues/Laws.h"
#include "tests/dialogues/MemoryFiles.h"
#include "tests/support/FakeFramework.h"
#include "tests/support/FakeHost.h"

namespace kelvane::dialogues {
namespace {

// The worker in-process, without files and time, in front of a framework that answers as told.
class Player {
 public:
  Player(const Form& form, const Dialogue& dialogue) : dialogue_(dialogue) {
    for (const std::string& wwn : form.wwns) framework_.devices.push_back({wwn, 0});
    framework_.adapters = static_cast<std::uint32_t>(form.adapters);
    for (const std::uint32_t status :
         {kUnsupported, kCurrent, kNearlyUnsupported, kNearlyCurrent}) {
      framework_.descriptions[status] = textOf(status);
    }
    framework_.decide = [this](const std::string& function) { return answerTo(function); };
    host_.folder = kProductFolder;
    files_.jobFile = form.jobs.dump();
    worker_.init(kShared);
    files_.tell = [this](std::string event) { events_.push_back(std::move(event)); };
    host_.onSleep = [this] { events_.push_back(fmt::format("sleep {}", host_.sleeps.back())); };
  }
  ~Player() {
    setLogPath("");
    iLog_host = nullptr;
  }
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  std::vector<std::string> play() {
    worker_.run("17");
    return std::move(events_);
  }

 private:
  std::uint32_t answerTo(const std::string& function) {
    events_.push_back(framework_.calls.back());
    if (next_ < dialogue_.answers.size() && function == dialogue_.answers[next_].function) {
      return give(function, dialogue_.answers[next_++].answer);
    }
    next_ = dialogue_.answers.size();  // another dialogue than the one that was told
    return give(
        function,
        {.progress = {0, function == "zr_getCPLDProgress" ? std::uint8_t{2} : std::uint8_t{5},
                      100}});
  }

  std::uint32_t give(const std::string& function, const Answer& answer) {
    framework_.failuresTellCounts = answer.value != 0;
    framework_.interfaceByte = static_cast<std::uint8_t>(answer.value);
    framework_.usbUpdateFlag = answer.value;
    if (function == "zr_getControllerInfo") {
      for (auto& device : framework_.devices) {
        device.productId = static_cast<std::uint16_t>(answer.value);
      }
    }
    if (function == "zr_getCPLDProgress") framework_.cpldProgress = {answer.progress};
    if (function.starts_with("zr_getFlash")) framework_.flashProgress = {answer.progress};
    return answer.status;
  }

  const Dialogue& dialogue_;
  std::size_t next_ = 0;
  std::vector<std::string> events_;
  MemoryFiles files_;
  test::FakeHost host_;
  test::FakeFramework framework_;
  Kelvane worker_{host_};
};

std::string eventAt(const std::vector<std::string>& events, std::size_t at) {
  return at < events.size() ? events[at] : "(nothing more)";
}

}  // namespace

std::vector<std::string> play(const Form& form, const Dialogue& dialogue) {
  return Player(form, dialogue).play();
}

std::string difference(const std::vector<std::string>& expected,
                       const std::vector<std::string>& seen) {
  if (expected == seen) return "";
  const auto parting = std::mismatch(expected.begin(), expected.end(), seen.begin(), seen.end());
  const auto at = static_cast<std::size_t>(parting.first - expected.begin());
  std::string text;
  for (std::size_t i = 0; i < at; ++i) {
    // Of what is right, the calls and sleeps tell where we are.
    if (!expected[i].starts_with("log ") && !expected[i].starts_with("write ") &&
        expected[i] != "read") {
      text += fmt::format("    {}\n", expected[i]);
    }
  }
  return text +
         fmt::format("  expected: {}\n  seen:     {}\n", eventAt(expected, at), eventAt(seen, at));
}

std::string deviationOf(const Form& form, const Dialogue& dialogue) {
  const std::vector<std::string> seen = play(form, dialogue);
  std::string found = difference(dialogue.events, seen);
  if (const std::string law = brokenLaw(seen); !law.empty()) {
    found.append("  law broken: ").append(law).append("\n");
  }
  return found;
}

std::string textOf(const Deviation& deviation) {
  return fmt::format("form {}, dialogue {}, script {}\n{}", deviation.form, deviation.number,
                     textOf(deviation.script), deviation.difference);
}

std::uint64_t prove(const Form& form, const std::function<void(const Deviation&)>& deviates) {
  Tree tree;
  std::uint64_t count = 0;
  while (tree.next()) {
    ++count;
    const std::string found = deviationOf(form, tell(form, tree));
    if (!found.empty()) deviates({form.name, tree.number(), tree.script(), found});
  }
  return count;
}

}  // namespace kelvane::dialogues
