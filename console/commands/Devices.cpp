#include "console/commands/Devices.h"

#include <filesystem>
#include <system_error>
#include <vector>

#include "console/checks/BundleChecks.h"
#include "console/checks/Framework.h"
#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/devices/Discovery.h"
#include "console/display/Colour.h"
#include "console/display/JsonText.h"
#include "console/display/Paragraphs.h"
#include "console/display/Table.h"
#include "console/job/ExitCode.h"
#include "console/job/JobFile.h"
#include "console/job/Processes.h"
#include "platform/Value.h"

namespace kelvane::console {

namespace fs = std::filesystem;

using platform::RunningProcess;
using platform::Value;

namespace {

constexpr char kNotMeanwhile[] =
    "; it may be flashing, and the controllers are not asked meanwhile. Wait for its end";

// Of a damaged job file, which is not this command's matter, no records are known.
Value recordsIn(const std::string& sharedFolder) {
  try {
    return JobFile(sharedFolder).read();
  } catch (const Failure&) {
    return Value::array();
  }
}

bool isCalled(const RunningProcess& process, const std::string& program) {
  std::error_code unknown;
  return !process.arguments.empty() &&
         fs::equivalent(fs::path(process.currentFolder) / process.arguments.front(), program,
                        unknown);
}

// --- what is shown

std::string wordFor(const Value& device, const char* key) {
  const Value& value = device.get(key);
  if (!value.isString()) return "-";
  const std::string& text = value.string();
  if (text == device::kQvxf) return "QVXF";
  if (text == device::kThunderbolt) return "Thunderbolt";
  return text == device::kOther ? "no bridge" : text;
}

Table tableOf(const Value& all) {
  Table table({{"WWN"}, {"Listed as"}, {"Product"}, {"Update"}, {"Attached"}});
  for (const Value& one : all.elements()) {
    table.addRow({wordFor(one, device::kWwn), wordFor(one, device::kListedAs),
                  wordFor(one, device::kProductId), wordFor(one, device::kUpdate),
                  wordFor(one, device::kAttached)});
  }
  return table;
}

// What the worker makes of it.
std::string meaningOf(const Value& device, bool isLast) {
  if (device.has(device::kProductId)) {
    return "It can be updated; whether it is attached by a bridge is not known.";
  }
  if (device.has(device::kWwn)) return "A firmware job for it fails when it comes to it.";
  return isLast ? "As the last one that is asked does not answer, every firmware job ends with "
                  "this status before it begins."
                : "Its WWN is not known: firmware jobs leave it out, and a job for it ends with "
                  "0x0402.";
}

void showTrouble(const Value& device, bool isLast, const Screen& screen) {
  const std::string name = device.has(device::kWwn)
                               ? "controller " + device.get(device::kWwn).string()
                               : "device " + device.get(device::kDeviceId).digits();
  showParagraphs({"warning: " + name + ": " + device.get(device::kFailed).string() + " gives " +
                      device.get(device::kStatus).string(),
                  Colour::yellow},
                 {{"means", meaningOf(device, isLast)},
                  {"to do", "Look at the enclosure's power and cable, then ask again."}},
                 screen);
}

void showNone(const std::string& library, const Screen& screen) {
  showParagraphs({"no devices", Colour::yellow},
                 {{"asked", library},
                  {"to do", "Switch the enclosures on and look at their cables, then ask again."}},
                 screen);
}

void showAll(const Value& all, const Screen& screen) {
  showTable(tableOf(all), screen);
  for (std::size_t i = 0; i < all.count(); ++i) {
    if (all.at(i).has(device::kFailed)) showTrouble(all.at(i), i + 1 == all.count(), screen);
  }
}

int exitCodeFor(const Value& all) {
  for (const Value& one : all.elements()) {
    if (one.has(device::kFailed)) return kFindings;
  }
  return kSuccess;
}

// --- the sub-command

Option requiredBundleOption() {
  Option option = bundleOption();
  option.description = "The application bundle that holds the framework";
  option.required = true;
  return option;
}

Option sharedOptionForWorkers() {
  Option option = sharedOption();
  option.description += "; while a worker runs there, nothing is asked";
  option.required = false;
  return option;
}

int runDevices(const Given& given, const Screen& screen) {
  return devices({.bundle = given.text(kBundleOption), .sharedFolder = given.text(kSharedOption)},
                 screen);
}

}  // namespace

void requireNoWorker(const std::string& bundle, const std::string& sharedFolder) {
  const std::vector<RunningProcess> processes = platform::runningProcesses();
  if (!sharedFolder.empty()) {
    const std::string logId = runningJob(sharedFolder, recordsIn(sharedFolder), processes);
    if (!logId.empty()) throw Failure(kBusy, "job " + logId + " is running" + kNotMeanwhile);
  }
  for (const RunningProcess& process : processes) {
    if (!isCalled(process, workerIn(bundle))) continue;
    throw Failure(kBusy, "the bundle's worker is running (process " + std::to_string(process.id) +
                             ")" + kNotMeanwhile);
  }
}

int devices(const DevicesOptions& options, const Screen& screen) {
  requireText(options.bundle, "the bundle");
  requireNoWorker(options.bundle,
                  options.sharedFolder.empty() ? "" : existingShared(options.sharedFolder));
  const std::string library = frameworkPath(options.bundle);
  const Value all = askFramework(library, [](const LookingFunctions& zorapi, const Step& step) {
    return Discovery(zorapi, step).devices();
  });
  return showDevices(all, library, screen);
}

int showDevices(const Value& all, const std::string& library, const Screen& screen) {
  if (screen.json) {
    screen.out << jsonText(all) << std::endl;
  } else if (all.count() == 0) {
    showNone(library, screen);
  } else {
    showAll(all, screen);
  }
  return exitCodeFor(all);
}

Command devicesCommand() {
  return {.name = "devices",
          .description = "Show the controllers that the bundle's framework finds",
          .options = {requiredBundleOption(), sharedOptionForWorkers(), jsonFlag()},
          .footer =
              "Versions are not shown: the interface of the framework does not tell them.\n"
              "Exit status: 0 all that were found have answered, 1 one has not, 6 a worker is\n"
              "running, 8 the framework gives no answer.\n"
              "Example:\n"
              "  kelvane-console devices --bundle /Manager/Manager.app",
          .run = runDevices};
}

}  // namespace kelvane::console
