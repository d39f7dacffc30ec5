// The application replaced through the console, by the real worker and the system's own tools.

#include <gmock/gmock.h>

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
