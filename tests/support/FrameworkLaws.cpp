#include "tests/support/FrameworkLaws.h"

namespace kelvane::test {
namespace {

// "0/1" of "zr_initializeFlashProcess(0/1, 0)".
std::string addressIn(const std::string& call) {
  const std::size_t start = call.find('(') + 1;
  return call.substr(start, call.find(',') - start);
}

// Whether, behind each event that begins with `opening`, one that begins with `closing`, of the
// same controller, comes before any that begins with `next`, and before the end.
bool closes(const Course& course, std::string_view opening, std::string_view closing,
            std::string_view next) {
  bool isOpen = false;
  std::string address;
  for (const std::string& event : course) {
    if (begins(event, opening)) {
      if (isOpen) return false;
      isOpen = true;
      address = addressIn(event);
      continue;
    }
    if (isOpen && begins(event, next)) return false;
    if (begins(event, closing) && addressIn(event) == address) isOpen = false;
  }
  return !isOpen;
}

// Whether the call right before each call of the one name has the other.
bool follows(const Course& course, std::string_view call, std::string_view before) {
  std::string last;
  for (const std::string& event : course) {
    if (begins(event, call) && !begins(last, before)) return false;
    if (isFrameworkCall(event)) last = event;
  }
  return true;
}

// Whether there is one sleep, of two seconds, between any two reads of a flash's progress, and no
// other.
bool sleepsBetweenReads(const Course& course) {
  bool hasRead = false;
  bool hasSlept = false;
  for (const std::string& event : course) {
    const bool isRead = begins(event, "zr_getCPLDProgress") || begins(event, "zr_getFlash");
    if (begins(event, "sleep") && (event != "sleep 2" || !hasRead || hasSlept)) return false;
    if (isRead && hasRead && !hasSlept) return false;
    if (begins(event, "sleep")) {
      hasSlept = true;
    } else if (isFrameworkCall(event)) {
      hasRead = isRead;
      hasSlept = false;
    }
  }
  return true;
}

}  // namespace

bool begins(const std::string& event, std::string_view start) {
  return event.compare(0, start.size(), start) == 0;
}

bool isFrameworkCall(const std::string& event) {
  return begins(event, "zr_") || begins(event, "decod_");
}

std::string brokenFrameworkLaw(const Course& course) {
  if (!sleepsBetweenReads(course)) return "progress is not read every two seconds";
  if (!closes(course, "zr_initializeCPLDProcess", "zr_finalizeCPLDProcess", "zr_initialize")) {
    return "a CPLD process is not closed";
  }
  if (!closes(course, "zr_initializeFlashProcess", "zr_finalizeFlashProcess", "zr_mac_")) {
    return "a flash process is not closed before anything else is opened";
  }
  if (!closes(course, "zr_flashQVXFImage", "zr_finializeQVXFImage", "zr_initialize")) {
    return "a QVXF flash is not closed";
  }
  if (!follows(course, "zr_transferFlashImage", "zr_checkFlashImage") ||
      !follows(course, "zr_verifyFlashImage", "zr_transferFlashImage") ||
      !follows(course, "zr_flashImageEx", "zr_verifyFlashImage") ||
      !follows(course, "zr_transferQVXFFlashImage", "zr_checkQVXFFlashImage") ||
      !follows(course, "zr_flashQVXFImage", "zr_analyzeQVXFImage")) {
    return "an image is flashed that was not checked, transferred and verified";
  }
  if (!follows(course, "zr_mac_setNVRAM", "zr_mac_flashUSBFWbin") ||
      !follows(course, "zr_mac_flashNVRAM", "zr_mac_setNVRAM")) {
    return "the bridge's NVRAM is written without its firmware";
  }
  return "";
}

}  // namespace kelvane::test
