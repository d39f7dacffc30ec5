#include "console/commands/DryRun.h"

#include <algorithm>

#include "console/checks/Framework.h"
#include "console/commands/Devices.h"
#include "console/devices/Rehearsal.h"
#include "console/display/Colour.h"
#include "console/display/JsonText.h"
#include "console/display/Paragraphs.h"
#include "console/job/ExitCode.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

bool isVerdict(const Value& entry, const char* verdict) {
  return entry.get(rehearsal::kVerdict) == Value(verdict);
}

std::string textOf(const Value& entry, const char* key) {
  return entry.has(key) ? entry.get(key).string() : "";
}

std::string updateOf(const Value& entry) {
  if (!entry.has(device::kUpdate)) return {};
  const std::string way = textOf(entry, device::kUpdate);
  return (way == device::kQvxf ? "QVXF" : way) + ", product " + textOf(entry, device::kProductId);
}

Colour colourOf(const Value& entry) {
  if (isVerdict(entry, rehearsal::kFits)) return Colour::green;
  return isVerdict(entry, rehearsal::kFails) ? Colour::red : Colour::yellow;
}

void showVerdict(const Value& entry, const Screen& screen) {
  showParagraphs(
      {textOf(entry, rehearsal::kVerdict) + ": " + textOf(entry, job::kWwn), colourOf(entry)},
      {{"image", textOf(entry, job::kFilePath)},
       {"update", updateOf(entry)},
       {"why", textOf(entry, rehearsal::kWhy)},
       {"did you mean", textOf(entry, rehearsal::kNearest)}},
      screen);
}

}  // namespace

Value rehearseIn(const std::string& bundle, const std::string& sharedFolder, const Value& inputs) {
  requireNoWorker(bundle, sharedFolder);
  return askFramework(frameworkPath(bundle),
                      [&inputs](const LookingFunctions& zorapi, const Step& step) {
                        return rehearse(inputs, zorapi, step);
                      });
}

bool canSucceed(const Value& all) {
  const auto& entries = all.elements();
  return std::none_of(entries.begin(), entries.end(),
                      [](const Value& entry) { return isVerdict(entry, rehearsal::kFails); });
}

void showEntries(const Value& all, const Screen& screen) {
  for (const Value& entry : all.elements()) showVerdict(entry, screen);
}

int showRehearsal(const Value& all, const Screen& screen) {
  if (screen.json) {
    screen.out << jsonText(all) << std::endl;
  } else {
    showEntries(all, screen);
    screen.out << "nothing was flashed" << std::endl;
  }
  return canSucceed(all) ? kSuccess : kFindings;
}

}  // namespace kelvane::console
