#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dialogues/Laws.h"

namespace kelvane::dialogues {
namespace {

using ::testing::HasSubstr;
using Events = std::vector<std::string>;

// A job that keeps all laws.
Events lawful() {
  return {"read",
          "write \"log_id\" \"state_id\": \"RUN\"",
          "zr_initialize(fixed words)",
          "zr_initializeCPLDProcess(0/0, 0)",
          "zr_getCPLDProgress(0/0, 0, progress[zeroed])",
          "sleep 2",
          "zr_getCPLDProgress(0/0, 0, progress[zeroed])",
          "zr_finalizeCPLDProcess(0/0, 0)",
          "zr_initializeFlashProcess(0/0, 0)",
          "zr_checkFlashImage()",
          "zr_transferFlashImage()",
          "log updateFW: Found error: none",
          "zr_verifyFlashImage()",
          "zr_flashImageEx()",
          "zr_finalizeFlashProcess(0/0, 0)",
          "zr_mac_flashUSBFWbin()",
          "zr_mac_setNVRAM()",
          "read",
          "write \"log_id\" \"state_id\": \"FREE\""};
}

std::string brokenWithout(const std::string& start) {
  Events events = lawful();
  const auto found = std::find_if(events.begin(), events.end(), [&](const std::string& event) {
    return event.rfind(start, 0) == 0;
  });
  events.erase(found);
  return brokenLaw(events);
}

std::string brokenWith(const std::string& event, const std::string& before) {
  Events events = lawful();
  events.insert(std::find(events.begin(), events.end(), before), event);
  return brokenLaw(events);
}

TEST(Laws, AreKept) { EXPECT_EQ(brokenLaw(lawful()), ""); }

TEST(Laws, WhatIsOpenedIsClosed) {
  EXPECT_THAT(brokenWithout("zr_finalizeCPLD"), HasSubstr("CPLD process"));
  EXPECT_THAT(brokenWithout("zr_finalizeFlash"), HasSubstr("flash process"));
  EXPECT_THAT(brokenWith("zr_initializeFlashProcess()", "zr_flashImageEx()"),
              HasSubstr("flash process"));
  EXPECT_THAT(brokenLaw({"zr_analyzeQVXFImage()", "zr_flashQVXFImage()", "read",
                         "write \"log_id\" \"state_id\": \"FREE\""}),
              HasSubstr("QVXF"));
}

TEST(Laws, WhatIsClosedIsWhatWasOpened) {
  Events events = lawful();
  std::replace(events.begin(), events.end(), std::string("zr_finalizeCPLDProcess(0/0, 0)"),
               std::string("zr_finalizeCPLDProcess(0/1, 0)"));
  EXPECT_THAT(brokenLaw(events), HasSubstr("CPLD process"));
}

TEST(Laws, TheJobFileIsReadBeforeItIsWrittenAndFreedAtTheEnd) {
  EXPECT_THAT(brokenWithout("read"), HasSubstr("job file"));
  EXPECT_THAT(brokenLaw({"read", "write \"log_id\" \"state_id\": \"RUN\""}), HasSubstr("job file"));
  Events events = lawful();
  events.emplace_back("zr_finalizeFlashProcess(0/0, 0)");
  EXPECT_THAT(brokenLaw(events), HasSubstr("job file"));
}

TEST(Laws, ProgressIsReadEveryTwoSeconds) {
  EXPECT_THAT(brokenWithout("sleep"), HasSubstr("two seconds"));
  EXPECT_THAT(brokenWith("sleep 2", "sleep 2"), HasSubstr("two seconds"));
  EXPECT_THAT(brokenWith("sleep 2", "zr_flashImageEx()"), HasSubstr("two seconds"));
}

TEST(Laws, NothingIsWrittenThatWasNotExamined) {
  EXPECT_THAT(brokenWithout("zr_checkFlashImage"), HasSubstr("checked"));
  EXPECT_THAT(brokenWithout("zr_verifyFlashImage"), HasSubstr("checked"));
  EXPECT_THAT(brokenWith("zr_transferQVXFFlashImage()", "zr_finalizeFlashProcess(0/0, 0)"),
              HasSubstr("checked"));
  EXPECT_THAT(brokenWithout("zr_mac_flashUSBFWbin"), HasSubstr("NVRAM"));
}

TEST(Laws, TheLogTellsNoError) {
  EXPECT_THAT(brokenWith("log updateFW error: why", "zr_flashImageEx()"), HasSubstr("error"));
  EXPECT_THAT(brokenWith("odd line: []", "zr_flashImageEx()"), HasSubstr("log"));
}

}  // namespace
}  // namespace kelvane::dialogues
