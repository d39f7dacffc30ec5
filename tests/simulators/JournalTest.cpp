// The journal file, and the library as a process meets it.

#include <cstdlib>
#include <filesystem>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "platform/Json.h"
#include "simulators/controllers/Journal.h"
#include "tests/simulators/SimulatedWorld.h"
#include "tests/support/TempFolder.h"

namespace kelvane::test {
namespace {

using platform::Value;
using simulator::FileJournal;

TEST(SimulatorJournal, LinesAreWholeJsonObjects) {
  const TempFolder folder;
  FileJournal journal(folder / "journal");
  const Value record = Value::dictionary(
      {{"text", "two\nlines,\n  and \"quotes\""}, {"list", Value::array({Value::integer(1)})}});
  journal.write(record);
  journal.write(Value::dictionary({{"a", "b"}}));
  const std::string text = folder.read("journal");
  const std::size_t end = text.find('\n');
  EXPECT_EQ(platform::parseJson(text.substr(0, end)), record);
  EXPECT_EQ(text.substr(end + 1), "{\"a\": \"b\"}\n");
}

TEST(SimulatorJournal, IsAppendedTo) {
  const TempFolder folder;
  const std::string path = folder.write("journal", "{}\n");
  FileJournal(path).write(Value::dictionary({{"a", "b"}}));
  EXPECT_EQ(folder.read("journal"), "{}\n{\"a\": \"b\"}\n");
}

TEST(SimulatorJournal, EmptyPathIsNoJournal) {
  const TempFolder folder;
  FileJournal("").write(Value::dictionary({{"a", "b"}}));
  EXPECT_EQ(folder.names(), std::vector<std::string>{});
}

TEST(SimulatorJournal, PathThatCannotBeOpenedIsTold) {
  const TempFolder folder;
  ::testing::internal::CaptureStderr();
  FileJournal(folder / "none/journal").write(Value::dictionary({{"a", "b"}}));
  EXPECT_NE(::testing::internal::GetCapturedStderr().find("none/journal"), std::string::npos);
}

TEST(SimulatorJournal, ShowsArgumentsResultsAndStatus) {
  SimulatedWorld world;
  world.start();
  world.readController();
  const auto& lines = world.journal.lines();
  ASSERT_EQ(lines.size(), 5U);
  EXPECT_EQ(simulator::jsonLine(lines[2]),
            R"({"function": "zr_getControllerInfo", "arguments": {"adapter": 0, "sel": 0, )"
            R"("size": 65535}, "status": 0, "results": {"product_id": "0x4301"}})");
}

// --- the library

class Library {
 public:
  explicit Library(const std::string& path) : handle_(::dlopen(path.c_str(), RTLD_NOW)) {}
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() {
    if (handle_ != nullptr) ::dlclose(handle_);
  }
  bool isOpen() const { return handle_ != nullptr; }
  template <typename Function>
  Function* function(const char* name) const {
    return reinterpret_cast<Function*>(::dlsym(handle_, name));
  }

 private:
  void* handle_;
};

TEST(SimulatedLibrary, FindsTheFleetBesideItself) {
  const TempFolder folder;
  const std::string path = folder / "libZORAPI.so";
  std::filesystem::copy_file(KELVANE_SIMULATED_LIBRARY, path);
  folder.write("fleet.json", fleetOfOne());
  ::unsetenv("ZORAPI_FLEET");
  ::setenv("ZORAPI_JOURNAL", (folder / "journal").c_str(), 1);
  const Library library(path);
  ASSERT_TRUE(library.isOpen()) << ::dlerror();
  const InitParm parm = initialParameters();
  EXPECT_EQ(library.function<decltype(zr_initialize)>("zr_initialize")(&parm), 0U);
  EXPECT_EQ(library.function<decltype(zr_discover)>("zr_discover")(0), 0U);
  EXPECT_EQ(folder.read("journal"),
            "{\"function\": \"zr_initialize\", \"arguments\": {}, \"status\": 0}\n"
            "{\"function\": \"zr_discover\", \"arguments\": {\"zero\": 0}, \"status\": 0}\n");
}

}  // namespace
}  // namespace kelvane::test
