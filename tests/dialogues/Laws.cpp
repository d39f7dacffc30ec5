#include "tests/dialogues/Laws.h"

#include <string_view>

namespace kelvane::dialogues {
namespace {

using Events = std::vector<std::string>;

bool begins(const std::string& event, std::string_view start) {
  return event.compare(0, start.size(), start) == 0;
}

bool isCall(const std::string& event) { return begins(event, "zr_") || begins(event, "decod_"); }

// Whether, behind each event that begins with `opening`, one that begins with `closing` comes
// before any that begins with `next`, and before the end.
bool closes(const Events& events, std::string_view opening, std::string_view closing,
            std::string_view next) {
  bool isOpen = false;
  for (const std::string& event : events) {
    if (isOpen && !begins(event, opening) && begins(event, next)) return false;
    if (isOpen && begins(event, opening)) return false;
    if (begins(event, opening)) isOpen = true;
    if (begins(event, closing)) isOpen = false;
  }
  return !isOpen;
}

// Whether the call right before each call of the one name has the other.
bool follows(const Events& events, std::string_view call, std::string_view before) {
  std::string last;
  for (const std::string& event : events) {
    if (begins(event, call) && !begins(last, before)) return false;
    if (isCall(event)) last = event;
  }
  return true;
}

// Whether there is one sleep, of two seconds, between any two reads of a flash's progress, and no
// other.
bool sleepsBetweenReads(const Events& events) {
  bool hasRead = false;
  bool hasSlept = false;
  for (const std::string& event : events) {
    const bool isRead = begins(event, "zr_getCPLDProgress") || begins(event, "zr_getFlash");
    if (begins(event, "sleep") && (event != "sleep 2" || !hasRead || hasSlept)) return false;
    if (isRead && hasRead && !hasSlept) return false;
    if (begins(event, "sleep")) {
      hasSlept = true;
    } else if (isCall(event)) {
      hasRead = isRead;
      hasSlept = false;
    }
  }
  return true;
}

// Whether the job file is read anew before it is written, and marked free once, at the end.
bool keepsTheFile(const Events& events) {
  bool hasRead = false;
  bool isFree = false;
  for (const std::string& event : events) {
    if (event == "read") hasRead = true;
    if (isFree && isCall(event)) return false;
    if (!begins(event, "write")) continue;
    if (!hasRead || isFree) return false;
    hasRead = false;
    // The job is the file's last record.
    isFree = event.find(R"("state_id": "FREE")", event.rfind(R"("log_id")")) != std::string::npos;
  }
  return isFree;
}

bool logsNoError(const Events& events) {
  for (const std::string& event : events) {
    if (begins(event, "odd line")) return false;
    if (!begins(event, "log ")) continue;
    const std::string_view head = std::string_view(event).substr(0, event.find(": "));
    if (head.ends_with(" error")) return false;
  }
  return true;
}

}  // namespace

std::string brokenLaw(const Events& events) {
  if (!logsNoError(events)) return "a line of the log is none, or tells an error";
  if (!keepsTheFile(events)) return "the job file is not read before it is written, or not freed";
  if (!sleepsBetweenReads(events)) return "progress is not read every two seconds";
  if (!closes(events, "zr_initializeCPLDProcess", "zr_finalizeCPLDProcess", "zr_initialize")) {
    return "a CPLD process is not closed";
  }
  if (!closes(events, "zr_initializeFlashProcess", "zr_finalizeFlashProcess", "zr_mac_")) {
    return "a flash process is not closed before anything else is opened";
  }
  if (!closes(events, "zr_flashQVXFImage", "zr_finializeQVXFImage", "zr_initialize")) {
    return "a QVXF flash is not closed";
  }
  if (!follows(events, "zr_transferFlashImage", "zr_checkFlashImage") ||
      !follows(events, "zr_verifyFlashImage", "zr_transferFlashImage") ||
      !follows(events, "zr_flashImageEx", "zr_verifyFlashImage") ||
      !follows(events, "zr_flashQVXFImage", "zr_analyzeQVXFImage")) {
    return "an image is flashed that was not checked, transferred and verified";
  }
  if (!follows(events, "zr_mac_setNVRAM", "zr_mac_flashUSBFWbin") ||
      !follows(events, "zr_mac_flashNVRAM", "zr_mac_setNVRAM")) {
    return "the bridge's NVRAM is written without its firmware";
  }
  return "";
}

}  // namespace kelvane::dialogues
