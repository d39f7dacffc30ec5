#include "tests/fuzz/laws/FleetLaws.h"

#include "platform/Json.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/MadeFleet.h"

namespace kelvane::fuzz {

void requireCourse(const std::vector<simulator::Reading>& readings) {
  bool isDone = false;
  for (const simulator::Reading& reading : readings) {
    require(reading.percent <= 100, "no flash comes beyond its end");
    require(!isDone || reading.done, "a flash that is done stays so");
    isDone = reading.done;
  }
}

void requireFlashed(const simulator::Fleet& before, const std::string& version,
                    const std::optional<simulator::Fleet>& after, const std::string& text) {
  require(after.has_value(), "a fleet that was written is one", text);
  simulator::Fleet expected = before;
  expected.controllers.front().firmware = version;
  requireSame(toldFleet(expected), toldFleet(*after),
              "what was flashed is kept, and the others stay as they are");
}

void requireKept(const std::string& before, const std::string& after) {
  require(platform::parseJson(after) == platform::parseJson(before), "all else in the file stays",
          after);
}

}  // namespace kelvane::fuzz
