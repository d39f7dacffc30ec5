// A job file and a log, as somebody may have sent them, through all that the console shows of them.
// No file steers the terminal, whatever it holds, and none makes an error that was not foreseen. A
// job is followed too, while its file becomes another one: what stands behind the log.

#include <chrono>
#include <clocale>
#include <functional>
#include <sstream>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "console/commands/Check.h"
#include "console/commands/Explain.h"
#include "console/commands/Guard.h"
#include "console/commands/JobEnd.h"
#include "console/commands/Jobs.h"
#include "console/commands/ShowLog.h"
#include "console/display/JsonView.h"
#include "console/display/PlainView.h"
#include "console/display/TerminalView.h"
#include "console/explain/Shortfall.h"
#include "console/job/ExitCode.h"
#include "console/job/Follower.h"
#include "console/job/LogStretch.h"
#include "console/job/Places.h"
#include "console/report/ReportPage.h"
#include "platform/Text.h"
#include "platform/WriteAll.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/laws/ConsoleLaws.h"

namespace kelvane::fuzz {
namespace {

using console::Charset;
using console::CopyOptions;
using console::Screen;

constexpr char kLogId[] = "17";

// A file without a name on any disk.
class File {
 public:
  explicit File(const char* name) : number_(::memfd_create(name, MFD_CLOEXEC)) {
    require(number_ >= 0, "there is room for a file");
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() { ::close(number_); }

  void fill(const std::string& bytes) const {
    const bool isFilled = ::ftruncate(number_, 0) == 0 && ::lseek(number_, 0, SEEK_SET) == 0 &&
                          platform::writeAll(number_, bytes);
    require(isFilled, "a file takes what is written");
  }
  std::string path() const { return "/proc/self/fd/" + std::to_string(number_); }

 private:
  int number_;
};

struct Sent {
  File jobFile{"jobs"};
  File log{"log"};
  std::string jobs = {};
  std::string laterJobs = {};  // empty: they stay
  CopyOptions options() const { return {.jobFile = jobFile.path(), .logFile = log.path()}; }
  console::Places places() const {
    return {.jobFile = jobFile.path(), .log = log.path(), .isCopy = true};
  }
};

// How wide, in which characters, and for whom.
struct Form {
  std::size_t columns = 0;
  Charset charset = Charset::utf8;
  bool json = false;
  bool colour = false;   // with colours as well
  bool isFitted = true;  // whether no line may be wider

  bool isAscii() const { return charset == Charset::ascii && !json; }
};

std::string shownBy(const std::function<int(const Screen&)>& command, const Form& form,
                    bool colour) {
  std::ostringstream out;
  std::ostringstream messages;
  const Screen screen{out, form.charset, form.json ? 0 : form.columns, colour, form.json};
  const int exitCode = console::guarded(
      messages, form.charset, [&] { return command(screen); }, form.columns);
  requireForeseen(exitCode, messages.str());
  requireHarmless(messages.str(), form.charset == Charset::ascii, "no message steers the terminal");
  return out.str();
}

void show(const Form& form, const std::function<int(const Screen&)>& command) {
  const std::string shown = shownBy(command, form, false);
  requireHarmless(shown, form.isAscii(), "no file steers the terminal");
  if (form.json) requireJson(shown);
  if (form.isFitted && !form.json && form.columns != 0) requireFitting(shown, form.columns);
  if (form.colour) requireSameInColour(shown, shownBy(command, form, true), form.json);
}

void showAll(const Sent& sent, Form form) {
  const CopyOptions copy = sent.options();
  show(form, [&](const Screen& screen) {
    return console::list({.sharedFolder = "", .copy = copy}, screen);
  });
  show(form, [&](const Screen& screen) {
    return console::list({.sharedFolder = "", .failed = true, .last = "2", .copy = copy}, screen);
  });
  show(form, [&](const Screen& screen) {
    return console::check({.sharedFolder = "", .bundle = "", .copy = copy}, screen);
  });
  show(form, [&](const Screen& screen) {
    return console::explain({.sharedFolder = "", .subject = kLogId, .copy = copy}, screen);
  });
  form.isFitted = false;  // what stands in the files as it stands there
  show(form, [&](const Screen& screen) {
    return console::show({.sharedFolder = "", .logId = kLogId, .copy = copy}, screen);
  });
  show(form, [&](const Screen& screen) {
    return console::showLog({.sharedFolder = "", .function = "", .full = true, .copy = copy},
                            screen);
  });
  show(form, [&](const Screen& screen) {
    return console::showLog(
        {.sharedFolder = "", .level = "error", .function = "", .tail = "3", .copy = copy}, screen);
  });
  show(form, [&](const Screen& screen) {
    return console::showLog({.sharedFolder = "", .function = "", .logId = kLogId, .copy = copy},
                            screen);
  });
}

// --- a job that is followed

// Between two looks a while passes; then the file is another one, and the job has no worker.
class Passing : public console::Clock, public console::Worker {
 public:
  explicit Passing(const Sent& sent) : sent_(sent) {}

  std::chrono::milliseconds now() override { return kWhile * looks_; }
  bool wait(std::chrono::milliseconds /*time*/) override {
    ++looks_;
    if (looks_ == kLater && !sent_.laterJobs.empty()) sent_.jobFile.fill(sent_.laterJobs);
    return true;
  }
  bool hasEnded() override { return looks_ >= kEnd; }
  bool isSeen() override { return looks_ % 2 == 0; }
  std::chrono::seconds timeOfDay() override { return kNoon; }
  std::string ending() const override { return "exit status 0"; }

 private:
  static constexpr std::chrono::seconds kWhile{40};
  static constexpr std::chrono::seconds kNoon{std::chrono::hours(12)};
  static constexpr int kLater = 3;
  static constexpr int kEnd = 6;

  const Sent& sent_;
  int looks_ = 0;
};

void followIn(console::View& view, const Sent& sent, const Screen& screen) {
  const console::Places places = sent.places();
  sent.jobFile.fill(sent.jobs);
  Passing passing(sent);
  const platform::Value record = console::recordAt(places, kLogId);
  console::Past past = console::pastOf(record, console::stretchIn(places, record), passing);
  past.log = [&](const platform::Value& seen) { return console::stretchIn(places, seen); };
  past.shortfall = [&](const platform::Value& seen, const console::LogStretch& log) {
    return console::shortfallAt(places, seen, log);
  };
  past.startFault = [](const platform::Value& seen) { return platform::describe(seen); };
  const auto followed = console::follow(console::JobFile::at(places.jobFile), kLogId, passing,
                                        passing, view, {}, past);
  if (followed.outcome == console::Outcome::finished) {
    console::endOfJob(followed.last, "", screen);
  }
}

// What is drawn, without what it is drawn with, and behind it what is told of the job's end.
std::string followedOnTerminal(const Form& form, const Sent& sent, bool colour) {
  std::ostringstream drawn;
  std::ostringstream rest;
  const auto size = [&form] { return console::TerminalSize{form.columns, 12}; };
  std::ostringstream messages;
  const int exitCode = console::guarded(messages, form.charset, [&] {
    console::TerminalView view(drawn, size, form.charset, colour);
    followIn(view, sent, {rest, form.charset, form.columns, colour});
    return console::kSuccess;
  });
  requireForeseen(exitCode, messages.str());
  requireHarmless(messages.str(), form.charset == Charset::ascii, "no message steers the terminal");
  return withoutDrawing(drawn.str(), form.columns) + rest.str();
}

void followOnTerminal(const Form& form, const Sent& sent) {
  const std::string text = followedOnTerminal(form, sent, false);
  requireHarmless(text, form.isAscii(), "no job that is followed steers the terminal");
  requireFitting(text, form.columns);
  if (form.colour) requireSameInColour(text, followedOnTerminal(form, sent, true), false);
}

void followAll(const Sent& sent, Form form) {
  form.isFitted = false;
  show(form, [&](const Screen& screen) {
    console::PlainView view(screen.out, screen.charset);
    followIn(view, sent, screen);
    return console::kSuccess;
  });
  show({.json = true, .colour = form.colour}, [&](const Screen& screen) {
    console::JsonView view(screen.out);
    followIn(view, sent, screen);
    return console::kSuccess;
  });
  if (form.columns != 0) followOnTerminal(form, sent);
}

// --- a report

void report(const Sent& sent) {
  console::ReportMatter matter = console::gatherReport({.version = "1", .places = sent.places()});
  matter.findings = console::findingsOf(sent.places(), "");
  for (const bool isRedacted : {false, true}) {
    requirePage(console::reportPage(matter, isRedacted).text);
  }
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  static const bool hasLocale = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
  fuzz::require(hasLocale, "widths of characters are known");
  fuzz::Bytes bytes(data, size);
  const std::size_t columns = bytes.flag() ? 20 + bytes.pick(181) : 0;
  const unsigned kind = bytes.byte();
  const auto charset = kind % 2 == 1 ? fuzz::Charset::ascii : fuzz::Charset::utf8;
  const bool colour = kind / 2 % 2 == 1;
  fuzz::Sent sent;
  sent.jobs = bytes.part();
  sent.jobFile.fill(sent.jobs);
  sent.log.fill(bytes.part());
  sent.laterJobs = bytes.rest();
  fuzz::showAll(sent, {.columns = columns, .charset = charset, .colour = colour});
  fuzz::showAll(sent, {.json = true, .colour = colour});
  fuzz::report(sent);
  fuzz::followAll(sent, {.columns = columns, .charset = charset, .colour = colour});
  return 0;
}
