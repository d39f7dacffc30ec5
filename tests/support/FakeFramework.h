// A scripted ZORAPI for unit tests: writes down every call with its decoded arguments and gives
// the answers that the test laid down. While one lives, the framework's functions are its own.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "zorapi/zorapi.h"

namespace kelvane::test {

class FakeFramework {
 public:
  // One controller, by its place in the discovery list.
  struct Device {
    std::string wwn;
    std::uint16_t productId;
  };
  // One answer of a progress call: the call's status and the bytes left in the record.
  struct Progress {
    std::uint8_t status;
    std::uint8_t stage;
    std::uint8_t percent;
    std::uint8_t retries = 0;
    std::uint32_t callStatus = 0;
    bool leavesRecord = false;  // the call writes nothing
  };

  FakeFramework();
  ~FakeFramework();
  FakeFramework(const FakeFramework&) = delete;
  FakeFramework& operator=(const FakeFramework&) = delete;

  // The n-th call (from 1) of the function gives this status, without any effect.
  void answer(const std::string& function, int n, std::uint32_t status) {
    answers[{function, n}] = status;
  }
  // How often the function was called.
  int count(const std::string& function) const;

  std::vector<Device> devices;
  std::uint32_t adapters = 0;          // the first devices; the others are subsystems
  std::deque<Progress> cpldProgress;   // when it is empty: done
  std::deque<Progress> flashProgress;  // when it is empty: finished
  std::map<std::pair<std::string, int>, std::uint32_t> answers;
  std::map<std::uint32_t, const char*> descriptions;  // else "text of 0x..."
  std::uint8_t interfaceByte = 1;
  std::uint32_t usbUpdateFlag = 1;
  std::function<void()> onCall;
  // Where it is set, it is asked for every call's status, in place of `answers`, and may first set
  // the fields above; the call is the last of `calls`.
  std::function<std::uint32_t(const std::string& function)> decide;
  bool failuresTellCounts = false;  // a failing count is written all the same
  bool failuresTellPages = false;   // and so is where a page is that was not found

  // What was called, such as "zr_flashQVXFImage(0/0, 0)". Addresses are adapter/subsystem; records
  // show in brackets what the fake put into them, "zeroed" where all bytes are 0. What is to be
  // zeroed before a call is left with a last byte that is not.
  std::vector<std::string> calls;

  // What each of them got: its status and, of a read of progress, the record as it was then; and
  // the fields above as they were.
  struct Given {
    std::uint32_t status = 0;
    Progress progress = {};
    std::uint8_t interfaceByte = 0;
    std::uint32_t usbUpdateFlag = 0;
    bool failuresTellCounts = false;
  };
  std::vector<Given> given;

  // --- for the framework's functions

  std::uint32_t called(const std::string& function, const std::string& arguments);
  const char* describe(std::uint32_t status);
  // Of the last call, a read of progress.
  std::uint32_t note(const Progress& record);

  const SubsystemInfo* lastSubsystem = nullptr;
  std::uint8_t* infoBuffer = nullptr;

 private:
  std::uint32_t statusOf(const std::string& function) const;

  std::map<std::uint32_t, std::string> genericDescriptions_;
};

}  // namespace kelvane::test
