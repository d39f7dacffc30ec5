// The sub-command update-sw, with small scripts as workers.

#include <filesystem>
#include <sstream>
#include <string>

#include "console/commands/UpdateSw.h"
#include "console/job/ExitCode.h"
#include "platform/File.h"
#include "tests/console/ConsoleWorld.h"

namespace kelvane::console {
namespace {

class UpdateSw : public ConsoleWorld {
 protected:
  UpdateSw() {
    makeApplication("New.app", "2.0");
    makeApplication("Installed.app", "1.0");
    folder.write("Manager.app/Contents/Resources/Config/setting.json",
                 R"({"AppPath": ")" + (folder / "Installed.app") + "\"}");
    options.package = folder / "New.app";
  }

  void makeApplication(const std::string& name, const std::string& version) const {
    const std::string program = folder.write(name + "/Contents/MacOS/Manager", version);
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    folder.write(name + "/Contents/Info.plist",
                 "<plist><dict><key>CFBundleShortVersionString</key><string>" + version +
                     "</string></dict></plist>");
  }
  // A worker that does this and leaves the job finished.
  void makeWorkerThatInstalls(const std::string& tools) {
    makeWorkerThatLeaves("FREE", "0");
    const std::string leaves = folder.read("Manager.app/Contents/Resources/Kelvane");
    makeWorker("old='" + (folder / "Installed.app") + "'\nnew='" + (folder / "New.app") + "'\n" +
               tools + leaves);
  }
  void makeWorkerThatInstalls() { makeWorkerThatInstalls("rm -Rf $old; cp -Rf $new $old\n"); }

  int run() {
    options.job = job;
    return runHere(updateSw, options);
  }
  void expectRefused(const std::string& message) {
    EXPECT_EQ(run(), kBadUsage);
    EXPECT_EQ(messages.str(), "kelvane-console: " + message + "\n");
    EXPECT_FALSE(platform::exists(folder / test::kJobFile));
  }

  UpdateSwOptions options;
};

TEST_F(UpdateSw, WhatTheWorkerSaysIsShownOnRequestAndThenNothingOlderIsLeft) {
  const std::string kept = folder.write("shared/utility/logs/standard-error-1.txt", "rm: no\n");
  makeWorkerThatInstalls();
  job.verbose = true;
  EXPECT_EQ(run(), kSuccess) << messages.str();
  EXPECT_FALSE(platform::exists(kept));
}

TEST_F(UpdateSw, TheWorkerFindsThePackage) {
  makeWorkerThatLooks();
  options.package = std::filesystem::relative(folder / "New.app").string();
  run();
  EXPECT_EQ(seenRecord().get("job_id").string(), "updateSW");
  const std::string path = seenRecord().get("input_parameters").get("file_path").string();
  EXPECT_EQ(path.front(), '/');
  EXPECT_TRUE(std::filesystem::equivalent(path, folder / "New.app"));
}

TEST_F(UpdateSw, TellsWhereTheApplicationStands) {
  makeWorkerThatInstalls();
  EXPECT_EQ(run(), kSuccess) << messages.str();
  EXPECT_EQ(shownAtTheEnd(),
            "result 0: the text\ninstalled at " + (folder / "Installed.app") + "\n");
}

TEST_F(UpdateSw, TellsFromWhichVersionToWhich) {
  makeWorkerThatInstalls();
  run();
  EXPECT_EQ(shown.str().rfind(
                (folder / "Installed.app") + ": version 1.0 is to be replaced by version 2.0\n", 0),
            0U)
      << shown.str();
}

TEST_F(UpdateSw, WhereNothingStandsNothingIsReplaced) {
  makeWorkerThatInstalls();
  std::filesystem::remove_all(folder / "Installed.app");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str().rfind((folder / "Installed.app") +
                                  ": version 2.0 is to be installed where nothing stands\n",
                              0),
            0U)
      << shown.str();
}

TEST_F(UpdateSw, AnApplicationThatIsGoneIsNoSuccess) {
  makeWorkerThatInstalls("rm -Rf $old\n");
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_EQ(messages.str(), "kelvane-console: no application stands at " +
                                (folder / "Installed.app") +
                                ": the new one was not copied, or was removed since\n");
}

TEST_F(UpdateSw, AnApplicationThatIsNotThePackageIsNoSuccess) {
  makeWorkerThatInstalls("echo 'rm: cannot remove it' >&2; echo 'cp: cannot make it' >&2\n");
  EXPECT_EQ(run(), kJobFailed);
  const std::string kept = "shared/utility/logs/standard-error-1.txt";
  EXPECT_EQ(messages.str(), "kelvane-console: what stands at " + (folder / "Installed.app") +
                                " is not the package: Contents/Info.plist differs, "
                                "Contents/MacOS/Manager differs\n"
                                "  rm: cannot remove it\n"
                                "  cp: cannot make it\n"
                                "  (kept in " +
                                (folder / kept) + ")\n");
  EXPECT_TRUE(folder.read(kept).ends_with("}}\nrm: cannot remove it\ncp: cannot make it\n"))
      << folder.read(kept);
}

TEST_F(UpdateSw, OfManyDifferencesTheFirstAreTold) {
  makeWorkerThatInstalls("cp -Rf $new $old\n");  // into what was not removed
  for (const char* name : {"a", "b", "c", "d"}) folder.write(std::string("New.app/") + name, "");
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_NE(messages.str().find("is not the package: Contents/Info.plist differs, "
                                "Contents/MacOS/Manager differs, New.app is left over, a is "
                                "missing, b is missing, and 2 more differences\n"),
            std::string::npos)
      << messages.str();
}

TEST_F(UpdateSw, WithoutWaitingNothingIsCompared) {
  makeWorkerThatInstalls("");
  job.noWait = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str().substr(shown.str().find('\n')), "\n1\n");
}

TEST_F(UpdateSw, WithoutAnAppPathNothingWouldBeReplaced) {
  const std::string settings = "Manager.app/Contents/Resources/Config/setting.json";
  makeWorkerThatLeaves("FREE", "0");
  for (const char* text : {"", "[]", "{}", R"({"AppPath": 5})"}) {
    folder.write(settings, text);
    messages.str("");
    expectRefused((folder / settings) +
                  " names no application (\"AppPath\"): the worker would replace nothing");
  }
}

TEST_F(UpdateSw, WithNoWaitTheLogIdIsTheOnlyAnswer) {
  makeWorkerThatInstalls("");
  job.noWait = true;
  screen.notices = &messages;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "1\n");
  EXPECT_EQ(messages.str(),
            (folder / "Installed.app") + ": version 1.0 is to be replaced by version 2.0\n");
}

TEST_F(UpdateSw, MachinesAreToldWhatStandsThereAfterwards) {
  makeWorkerThatInstalls();
  screen.json = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str().substr(shown.str().find('{')),
            "{\"log_id\":\"1\",\"console_installation\":{\"path\":\"" + (folder / "Installed.app") +
                "\",\"is_package\":true,\"replaced_version\":\"1.0\","
                "\"package_version\":\"2.0\"}}\n");
}

TEST_F(UpdateSw, MachinesAreToldOfADifferenceToo) {
  makeWorkerThatInstalls("");
  screen.json = true;
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_NE(shown.str().find("\"is_package\":false"), std::string::npos) << shown.str();
  EXPECT_NE(shown.str().find("\"fault\":\"what stands at "), std::string::npos) << shown.str();
}

// --- a worker without its bundle

class UpdateSwOfAWorker : public UpdateSw {
 protected:
  UpdateSwOfAWorker() {
    makeWorkerThatLeaves("FREE", "0");
    job.worker = folder / "Manager.app/Contents/Resources/Kelvane";
    job.bundle = "";
  }
};

TEST_F(UpdateSwOfAWorker, WhatCannotBeComparedIsNoSuccess) {
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_EQ(messages.str(),
            "kelvane-console: whether the application was replaced is not known: the worker's "
            "result tells nothing of it, and no bundle is given. Look at the application; with the "
            "worker's bundle in --bundle it is compared with the package\n");
  EXPECT_EQ(shownAtTheEnd(), "result 0: the text\n");
}

TEST_F(UpdateSwOfAWorker, MachinesAreToldThatItIsNotKnown) {
  screen.json = true;
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_NE(shown.str().find("\"console_installation\":{\"package_version\":\"2.0\",\"fault\""),
            std::string::npos)
      << shown.str();
}

TEST_F(UpdateSwOfAWorker, AsksWithoutKnowingWhatIsReplaced) {
  std::istringstream answers("n\n");
  screen.answers = &answers;
  EXPECT_EQ(run(), kNotConfirmed);
  EXPECT_EQ(shown.str(),
            "which application the worker replaces, and which version, is not known, as no bundle "
            "is given: version 2.0 is to take its place\n"
            "Remove the application and install the new one? [y/N] ");
  EXPECT_FALSE(platform::exists(folder / test::kJobFile));
}

// --- what is installed

TEST_F(UpdateSw, MissingPackageIsRefused) {
  options.package = "/nowhere/New.app";
  expectRefused("package /nowhere/New.app does not exist");
}

TEST_F(UpdateSw, WhatIsNoApplicationIsRefused) {
  options.package = folder.write("New.dmg", "");
  expectRefused("package " + options.package + " is no application bundle: it is a file");
  messages.str("");
  options.package = "/etc";
  expectRefused("package /etc is no application bundle: it has no folder Contents");
  messages.str("");
  folder.write("Data.app/Contents/data", "");
  options.package = folder / "Data.app";
  expectRefused("package " + options.package +
                " is no application bundle: there is no program in its Contents");
}

TEST_F(UpdateSw, OfALinkTheFolderItLeadsToIsInstalled) {
  makeWorkerThatLooks();
  std::filesystem::create_directory_symlink(folder / "New.app", folder / "link");
  options.package = folder / "link";
  run();
  EXPECT_EQ(seenRecord().get("input_parameters").get("file_path").string(), folder / "New.app");
}

TEST_F(UpdateSw, PackageInsideTheReplacedApplicationIsRefused) {
  makeApplication("Installed.app/Contents/New.app", "2.0");
  for (const char* inside : {"Installed.app", "Installed.app/Contents/New.app"}) {
    options.package = folder / inside;
    messages.str("");
    expectRefused("package " + options.package + " lies in the application at " +
                  (folder / "Installed.app") + " and would be removed with it");
  }
}

TEST_F(UpdateSw, PackageWhoseNameOnlyBeginsAlikeIsNot) {
  makeWorkerThatInstalls("rm -Rf $old; cp -Rf $old.new $old\n");
  makeApplication("Installed.app.new", "3.0");
  options.package = folder / "Installed.app.new";
  EXPECT_EQ(run(), kSuccess) << messages.str();
}

// --- the question

class UpdateSwInATerminal : public UpdateSw {
 protected:
  UpdateSwInATerminal() {
    makeWorkerThatInstalls();
    screen.answers = &answers;
  }
  std::string question() const {
    return (folder / "Installed.app") +
           ": version 1.0 is to be replaced by version 2.0\n"
           "Remove the application and install the new one? [y/N] ";
  }

  std::istringstream answers;
};

TEST_F(UpdateSwInATerminal, AsksBeforeAnApplicationIsRemoved) {
  answers.str("y\n");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str().rfind(question(), 0), 0U) << shown.str();
}

TEST_F(UpdateSwInATerminal, WhatIsNoYesIsANo) {
  for (const char* answer : {"", "\n", "n\n", "yesterday\n"}) {
    answers.clear();
    answers.str(answer);
    EXPECT_EQ(run(), kNotConfirmed) << answer;
  }
  EXPECT_FALSE(platform::exists(folder / test::kJobFile));
  EXPECT_EQ(messages.str().rfind("kelvane-console: not confirmed; nothing was changed\n", 0), 0U);
}

TEST_F(UpdateSwInATerminal, AnInterruptIsANo) {
  interrupt = true;
  EXPECT_EQ(run(), kInterrupted);
  EXPECT_FALSE(platform::exists(folder / test::kJobFile));
}

TEST_F(UpdateSwInATerminal, WithYesDoesNotAsk) {
  options.yes = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str().find("[y/N]"), std::string::npos);
}

TEST_F(UpdateSwInATerminal, WhereNothingIsRemovedDoesNotAsk) {
  std::filesystem::remove_all(folder / "Installed.app");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str().find("[y/N]"), std::string::npos);
}

}  // namespace
}  // namespace kelvane::console
