// The application replaced through the console, by the real worker and the system's own tools.

#include <gmock/gmock.h>

#include "platform/Json.h"
#include "tests/end_to_end/SupportInstallation.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/PseudoTerminal.h"

namespace kelvane {
namespace {

using ::testing::HasSubstr;

class UpdateSwJob : public SupportInstallation {
 protected:
  std::vector<std::string> command() const {
    return {bundle / "bin/kelvane-console",
            "update-sw",
            "--shared",
            shared(),
            "--bundle",
            bundle.path(),
            folder / "Manager.app"};
  }
};

TEST_F(UpdateSwJob, WithoutPermissionIsNoSuccessAndTellsWhatTheToolsSaid) {
  giveSharedFolderToEveryone();
  const std::string told = test::asOrdinaryUser([this] {
    const test::Ended ended = test::runProgram(command(), "/");
    return std::to_string(ended.exitStatus) + "\n" + ended.out + ended.err;
  });
  EXPECT_THAT(told, ::testing::StartsWith("1\n"));
  EXPECT_THAT(told, HasSubstr("result 0: no error\n"));
  EXPECT_THAT(told, HasSubstr("kelvane-console: what stands at " + (folder / "Installed.app") +
                              " is not the package: Contents/MacOS is missing, Contents/version "
                              "differs"));
  EXPECT_THAT(told, HasSubstr("\n  /bin/rm: "));
  EXPECT_THAT(told, HasSubstr("\n  /bin/cp: "));
  EXPECT_THAT(told, HasSubstr("Permission denied\n"));
  EXPECT_THAT(folder.read("shared/utility/logs/standard-error-1.txt"),
              HasSubstr("Permission denied\n"));
  EXPECT_EQ(folder.read("Installed.app/Contents/version"), "1.0");
}

// The application writes its job file anew, and log ids begin with 1 again.
TEST_F(UpdateSwJob, TheSameJobAddedAnewIsNeitherTakenNorToldWhatTheToolsSaidBefore) {
  giveSharedFolderToEveryone();
  test::asOrdinaryUser([this] {
    test::runProgram(command(), "/");
    return std::string();
  });
  const auto told = [this](const std::vector<std::string>& asked) {
    std::vector<std::string> arguments = asked;
    arguments.insert(arguments.begin() + 1, {"--shared", shared()});
    return console(arguments).out;
  };
  EXPECT_THAT(told({"list"}), HasSubstr("no error, but the system's tools complained: /bin/rm: "));
  const auto record =
      platform::Value::dictionary({{"log_id", "1"},
                                   {"job_id", "updateSW"},
                                   {"state_id", "WAIT"},
                                   {"input_parameters", jobs().at(0).get("input_parameters")}});
  folder.write(test::kJobFile, platform::printJson(platform::Value::array({record})).value_or(""));
  EXPECT_THAT(told({"list"}), ::testing::EndsWith("     1  updateSW  WAIT\n"));
  EXPECT_THAT(told({"explain", "1"}), HasSubstr("No worker has taken it"));
  EXPECT_THAT(told({"explain", "1"}), ::testing::Not(HasSubstr("standard error")));
}

TEST_F(UpdateSwJob, InATerminalTheUserIsAsked) {
  test::PseudoTerminal no(command(), folder.path(), {80, 24, true});
  ASSERT_TRUE(no.waitFor("[y/N]"));
  no.type("n\n");
  EXPECT_EQ(no.end(), 7);
  EXPECT_EQ(folder.read("Installed.app/Contents/version"), "1.0");
  test::PseudoTerminal yes(command(), folder.path(), {80, 24, true});
  ASSERT_TRUE(yes.waitFor("[y/N]"));
  yes.type("y\n");
  EXPECT_EQ(yes.end(), 0) << yes.output();
  EXPECT_EQ(folder.read("Installed.app/Contents/version"), "2.0");
}

TEST_F(UpdateSwJob, AnInterruptAtTheQuestionChangesNothing) {
  test::PseudoTerminal terminal(command(), folder.path(), {80, 24, true});
  ASSERT_TRUE(terminal.waitFor("[y/N]"));
  terminal.type("\x03");
  EXPECT_EQ(terminal.end(), 130);
  EXPECT_EQ(jobs().count(), 0U);
}

}  // namespace
}  // namespace kelvane
