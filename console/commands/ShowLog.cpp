#include "console/commands/ShowLog.h"

#include <algorithm>
#include <iterator>

#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/display/Colour.h"
#include "console/job/ExitCode.h"
#include "console/job/LogFile.h"
#include "contract/Log.h"
#include "platform/Json.h"

namespace kelvane::console {

using platform::Value;

namespace {

// What is of no known level is shown like the gravest.
std::ptrdiff_t gravity(const std::string& level) {
  return std::find(std::begin(logging::kLevels), std::end(logging::kLevels), level) -
         std::begin(logging::kLevels);
}

bool isWanted(const LogEntry& entry, const ShowLogOptions& options) {
  return gravity(entry.level) >= gravity(options.level) &&
         (options.function.empty() || entry.function == options.function);
}

std::string folded(const std::string& message) {
  const std::size_t end = message.find('\n');
  if (end == std::string::npos) return message;
  const auto more = std::count(message.begin(), message.end(), '\n');
  return message.substr(0, end) + " ... (" + std::to_string(more) +
         (more == 1 ? " more line)" : " more lines)");
}

std::string lineOf(const LogEntry& entry, bool full, const Screen& screen) {
  std::string head = entry.time + ' ';
  if (entry.level != logging::kLevels[0]) head += entry.level + ' ';
  if (!entry.function.empty()) head += entry.function + ": ";
  const std::string text =
      displayLines(head + (full ? entry.message : folded(entry.message)), screen.charset);
  return gravity(entry.level) >= gravity("error") ? coloured(text, Colour::red, screen.colour)
                                                  : text;
}

std::string jsonOf(const LogEntry& entry, Charset charset) {
  // Repaired: the log may hold a line that a crash has cut inside a character.
  return platform::printJsonLine(
             Value::dictionary({{"time", displayText(entry.time, charset)},
                                {"file", displayText(entry.file, charset)},
                                {"line", displayText(entry.line, charset)},
                                {"function", displayText(entry.function, charset)},
                                {"level", displayText(entry.level, charset)},
                                {"message", displayLines(entry.message, charset)}}))
      .value_or("null");
}

std::string nothingText(const ShowLogOptions& options) {
  std::string text = "no entries";
  if (!options.function.empty()) text.append(" of ").append(options.function);
  return options.level == logging::kLevels[0] ? text : text + " at this level";
}

constexpr char kLevel[] = "--level";
constexpr char kFunction[] = "--function";
constexpr char kFull[] = "--full";

int runLog(const Given& given, const Screen& screen) {
  return showLog({.sharedFolder = given.text(kSharedOption),
                  .level = given.text(kLevel, logging::kLevels[0]),
                  .function = given.text(kFunction),
                  .full = given.has(kFull),
                  .copy = copyOptionsOf(given)},
                 screen);
}

}  // namespace

int showLog(const ShowLogOptions& options, const Screen& screen) {
  bool isEmpty = true;
  const Places places = placesOf(options.sharedFolder, options.copy, existingShared);
  for (const LogEntry& entry : parseLog(readLogAt(logPathOf(places)))) {
    if (!isWanted(entry, options)) continue;
    isEmpty = false;
    screen.out << (screen.json ? jsonOf(entry, Charset::utf8) : lineOf(entry, options.full, screen))
               << '\n';
  }
  if (isEmpty && !screen.json) screen.out << nothingText(options) << '\n';
  screen.out.flush();
  return kSuccess;
}

Command logCommand() {
  std::vector<Option> options = placeOptions();
  options.insert(
      options.end(),
      {jsonFlag(),
       {.names = {kLevel},
        .kind = ValueKind::choice,
        .valueName = "LEVEL",
        .description = "The least level that is shown",
        .choices = {std::begin(logging::kLevels), std::end(logging::kLevels)}},
       {.names = {kFunction},
        .valueName = "NAME",
        .description = "Show the entries of this function alone"},
       {.names = {kFull}, .kind = ValueKind::none, .description = "Show objects whole"}});
  return {.name = "log",
          .description = "Show the worker's log, objects folded",
          .options = options,
          .footer = "Example:\n  kelvane-console log --shared ~/Shared --level error",
          .run = runLog};
}

}  // namespace kelvane::console
