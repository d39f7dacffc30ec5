#include "console/devices/FrameworkQuestion.h"

#include <chrono>
#include <cstdint>
#include <exception>
#include <sstream>
#include <vector>

#include <dlfcn.h>

#include "console/checks/Access.h"
#include "console/checks/Trial.h"
#include "console/display/Words.h"
#include "console/job/ExitCode.h"
#include "platform/Exception.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "platform/Utf8.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr std::chrono::seconds kLongestAsking{60};

// What the child tells, a line of JSON each: a step, and at the end an answer or a fault.
constexpr char kStep[] = "step";
constexpr char kAnswer[] = "answer";
constexpr char kFault[] = "fault";

// --- in the child

std::string lineOf(const char* what, const Value& value) {
  return platform::printJsonLine(Value::dictionary({{what, value}})).value_or("") + "\n";
}

template <typename Function>
void find(void* library, const char* name, Function*& function, std::vector<std::string>& missing) {
  void* found = ::dlsym(library, name);
  if (found == nullptr) missing.emplace_back(name);
  function = reinterpret_cast<Function*>(found);
}

LookingFunctions functionsOf(const std::string& path) {
  void* library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    const char* cause = ::dlerror();
    throw Failure(kNoAnswer, platform::format("it cannot be loaded: %s", cause));
  }
  LookingFunctions functions = {};
  std::vector<std::string> missing;
#define KELVANE_FIND_FUNCTION(name) find(library, #name, functions.name, missing);
  KELVANE_LOOKING_FUNCTIONS(KELVANE_FIND_FUNCTION)
#undef KELVANE_FIND_FUNCTION
  if (missing.empty()) return functions;
  throw Failure(kNoAnswer, "it lacks " + joined(missing, ", "));
}

void ask(const std::string& path, const Question& question, const Tell& tell) {
  const Step step = [&tell](const std::string& next) { tell(lineOf(kStep, next)); };
  try {
    step("loading it");
    tell(lineOf(kAnswer, question(functionsOf(path), step)));
  } catch (const std::exception& caught) {
    tell(lineOf(kFault, platform::repairedUtf8(caught.what())));
  }
}

// --- in the parent

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// What was told last of each kind. The last line may be cut.
Value toldBy(const Trial& trial) {
  Value told = Value::dictionary();
  for (const std::string& line : linesOf(trial.answer)) {
    try {
      told.setAll(platform::parseJson(line));
    } catch (const platform::Exception&) {
      break;
    }
  }
  return told;
}

std::string faultOf(const Trial& trial, const Value& told) {
  if (told.has(kFault)) return told.get(kFault).string();
  const std::string step = told.has(kStep) ? told.get(kStep).string() : "asking it";
  return step + " " + (trial.fault.empty() ? "ends the process" : trial.fault);
}

}  // namespace

Value askFramework(const std::string& library, const Question& question) {
  if (const EntryKind kind = kindOf(library); kind != EntryKind::file) {
    const std::string cause = refusal(library, Access::read);
    throw Failure(kNoAnswer, "the framework " + library +
                                 (cause.empty() ? " is no regular file" : ": " + cause));
  }
  const Trial trial =
      tryApart(kLongestAsking, [&](const Tell& tell) { ask(library, question, tell); });
  const Value told = toldBy(trial);
  if (told.has(kAnswer)) return told.get(kAnswer);
  throw Failure(kNoAnswer, "the framework " + library + ": " + faultOf(trial, told),
                linesOf(trial.complaints));
}

std::string statusText(const LookingFunctions& zorapi, std::uint32_t status) {
  const char* description = zorapi.getErrorDescription(status);
  std::string text = platform::format("%x", status);
  text = "0x" + std::string(text.size() < 4 ? 4 - text.size() : 0, '0') + text;
  if (description != nullptr) text.append(" ").append(platform::repairedUtf8(description));
  return text;
}

}  // namespace kelvane::console
