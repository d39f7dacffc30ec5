#include "console/command_line/completion/ValuesCommand.h"

#include <algorithm>
#include <exception>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/display/JobText.h"
#include "console/display/Words.h"
#include "console/job/ExitCode.h"
#include "console/job/JobFile.h"
#include "console/job/JobStatus.h"
#include "console/job/RecordValues.h"
#include "contract/Catalogue.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr char kJobs[] = "jobs";
constexpr char kProducts[] = "products";

// A value, and what it is.
using Offer = std::pair<std::string, std::string>;
using Offers = std::vector<Offer>;

// A value that can be typed, and is not taken for an option.
bool canBeOffered(const std::string& value) {
  return !value.empty() && value.front() != '-' && displayText(value, Charset::utf8) == value;
}

std::string aboutJob(const JobStatus& status) {
  std::vector<std::string> words;
  if (!status.command.empty()) words.push_back(status.command);
  words.push_back(status.state);
  if (status.isFinished() && !status.hasSucceeded()) words.push_back(resultNumber(status.result));
  return joined(words, ", ");
}

// The newest first; of those with one log id the one that is meant by it.
Offers jobsIn(const Value& records) {
  Offers offers;
  std::unordered_set<std::string> offered;
  for (std::size_t i = records.count(); i > 0; --i) {
    const Value& record = records.at(i - 1);
    if (!record.isDictionary()) continue;
    const JobStatus status = statusOf(record);
    if (!offered.insert(status.logId).second) continue;
    offers.emplace_back(status.logId, aboutJob(status));
  }
  return offers;
}

Offers offersOf(const Value& rules) {
  Offers offers;
  std::unordered_map<std::string, std::size_t> places;  // of the products in the offers
  for (const Value& rule : rules.elements()) {
    if (!rule.isDictionary()) continue;
    const std::string product = stringOf(rule.get(catalogue::kProductId));
    const std::string version = stringOf(rule.get(catalogue::kVersion));
    const auto [place, isNew] = places.try_emplace(product, offers.size());
    if (isNew) {
      offers.emplace_back(product, version);
    } else if (!version.empty()) {
      offers[place->second].second.append(", ").append(version);
    }
  }
  return offers;
}

// Of the last query that came to an end with a catalogue.
Offers productsIn(const Value& records) {
  for (std::size_t i = records.count(); i > 0; --i) {
    const Value& record = records.at(i - 1);
    if (!record.isDictionary() || record.get(job::kJobId) != Value(job::kGetOnlineUpdateData) ||
        record.get(job::kStateId) != Value(job::kFree) || !record.get(job::kOutput).isArray()) {
      continue;
    }
    return offersOf(record.get(job::kOutput));
  }
  return {};
}

void show(const Offers& offers, const TypedWords& typed, const Screen& screen) {
  for (const auto& [value, about] : offers) {
    const bool isTyped = std::find(typed.begin(), typed.end(), value) != typed.end();
    if (isTyped || !canBeOffered(value)) continue;
    screen.out << value << '\t' << displayText(about, screen.charset) << '\n';
  }
  screen.out.flush();
}

constexpr char kKind[] = "kind";
constexpr char kWords[] = "words";

int runValues(const Given& given, const Screen& screen) {
  return showValues({.sharedFolder = given.text(kSharedOption),
                     .kind = given.text(kKind),
                     .words = given.texts(kWords)},
                    screen);
}

}  // namespace

int showValues(const ValuesOptions& options, const Screen& screen) {
  try {
    const std::string folder =
        valueAmong(options.words, kSharedOption).value_or(options.sharedFolder);
    if (folder.empty()) return kSuccess;
    const Value records = JobFile(existingShared(folder)).read();
    show(options.kind == kJobs ? jobsIn(records) : productsIn(records), options.words, screen);
  } catch (const std::exception&) {
    return kSuccess;  // no text in the middle of a line that is being typed
  }
  return kSuccess;
}

std::string askedFor(ValueKind kind) {
  if (kind == ValueKind::logId) return kJobs;
  return kind == ValueKind::product ? kProducts : "";
}

Command valuesCommand() {
  Option shared = sharedOption();
  shared.required = false;
  return {.name = "values",
          .description = "List what a value can be, for the completions",
          .options = {shared},
          .arguments = {{.names = {kKind},
                         .kind = ValueKind::choice,
                         .valueName = "KIND",
                         .description = "Log ids, or the products of the last query",
                         .choices = {kJobs, kProducts},
                         .required = true},
                        {.names = {kWords},
                         .valueName = "WORD",
                         .description = "A word of the line that is completed, behind \"--\"; a "
                                        "shared folder that is named there is the one meant",
                         .repeated = true}},
          .footer =
              "A line for each, with a tab and what it is behind it; none where that cannot be\n"
              "found out.\n"
              "Example:\n"
              "  kelvane-console values jobs --shared ~/Shared",
          .run = runValues};
}

}  // namespace kelvane::console
