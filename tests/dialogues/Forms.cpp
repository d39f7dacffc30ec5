#include <stdexcept>

#include <fmt/format.h>

#include "tests/dialogues/Proof.h"

namespace kelvane::dialogues {
namespace {

constexpr char kFirst[] = "W0";
constexpr char kSecond[] = "W1";
constexpr char kThird[] = "W2";

Json record(const char* logId, const char* state) {
  return {{"log_id", logId}, {"job_id", "updateFW"}, {"state_id", state}};
}

Json entry(const char* wwn, const char* path) { return {{"wwn", wwn}, {"file_path", path}}; }

// The waiting job alone.
Json waiting(std::initializer_list<Json> entries) {
  Json job = record("17", "WAIT");
  job["input_parameters"] = Json::array();
  for (const Json& each : entries) job["input_parameters"].push_back(each);
  return Json::array({job});
}

// Behind a finished job, and with a key of its own.
Json behindAnother(const Json& jobs) {
  Json before = record("16", "FREE");
  before["input_parameters"] = Json::array({entry("other", "/other.img")});
  Json job = jobs.front();
  job["note"] = "kept as it is";
  return Json::array({before, job});
}

Json withoutParameters() {
  Json job = waiting({}).front();
  job.erase("input_parameters");
  return Json::array({job});
}

Json withAnotherKey(Json entry) {
  entry["place"] = "left";
  return entry;
}

Form twoControllers(const char* name, const char* which, const char* firstKinds) {
  return {name,
          fmt::format("two controllers, {}", which),
          waiting({entry(kFirst, "/a.img"), withAnotherKey(entry(kSecond, "/b.img"))}),
          {kFirst, kSecond},
          2,
          3,
          firstKinds};
}

}  // namespace

const std::vector<Form>& forms() {
  static const std::vector<Form> all = {
      {"one", "one controller", waiting({entry(kFirst, "/a.img")}), {kFirst}, 1, 3},
      twoControllers("two-usb", "the first with a USB image", "u"),
      twoControllers("two-standard", "the first without a USB image", "s"),
      twoControllers("two-qvxf", "the first QVXF", "q"),
      twoControllers("two-other", "the first without a path of its own", "x"),
      {"again",
       "the same controller twice, with two images",
       waiting({withAnotherKey(entry(kFirst, "/a.img")), entry(kFirst, "/b.img")}),
       {kFirst},
       1,
       2},
      {"subsystem",
       "one of two that are listed as subsystems, behind another job",
       behindAnother(waiting({entry(kThird, "/c.img")})),
       {kFirst, kSecond, kThird},
       1,
       2},
      {"pathless",
       "an entry without a path, which has no progress entry, before one with a path",
       waiting({{{"wwn", kFirst}}, entry(kSecond, "/b.img")}),
       {kFirst, kSecond},
       2,
       1},
      {"stranger-first",
       "a WWN that is not there, before one that is",
       waiting({entry("unknown", "/a.img"), entry(kFirst, "/b.img")}),
       {kFirst},
       1,
       2},
      {"stranger-second",
       "a WWN that is there, before one that is not",
       waiting({entry(kFirst, "/a.img"), entry("unknown", "/b.img")}),
       {kFirst},
       1,
       2},
      {"nameless",
       "an entry without a WWN, before one with it",
       waiting({{{"file_path", "/a.img"}}, entry(kFirst, "/b.img")}),
       {kFirst},
       1,
       1},
      {"long-path",
       "a path that is longer than the record's room for it",
       waiting({entry(kFirst, ("/" + std::string(300, 'p') + ".img").c_str())}),
       {kFirst},
       1,
       1},
      {"namesakes",
       "two controllers of the same WWN, of which the first that answers is the one",
       waiting({entry(kFirst, "/a.img")}),
       {kFirst, kFirst},
       1,
       1},
      {"none",
       "an empty list of entries",
       behindAnother(waiting({})),
       {kFirst, kSecond, kThird},
       2,
       1},
      {"missing", "no list of entries", behindAnother(withoutParameters()), {kFirst}, 1, 1},
  };
  return all;
}

const Form& formNamed(const std::string& name) {
  for (const Form& form : forms()) {
    if (form.name == name) return form;
  }
  throw std::invalid_argument("no form has the name " + name);
}

}  // namespace kelvane::dialogues
