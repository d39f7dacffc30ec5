#include "console/explain/PackageNotes.h"

#include <algorithm>
#include <cstddef>

#include "contract/JobFile.h"
#include "platform/File.h"

namespace kelvane::console {

using platform::Value;

namespace {

std::string textOf(const Value& value) { return value.isString() ? value.string() : "(no text)"; }

enum class Presence { yes, no, unknown };

// The one package of a download that failed for want of a package is missing.
Presence presenceOf(const Value& description, const Value& output, bool isCopy) {
  const Value& path = description.get(job::kFilePath);
  if (!path.isString() || path.string().empty()) return Presence::no;
  if (isCopy) return output.count() == 1 ? Presence::no : Presence::unknown;
  return platform::exists(path.string()) ? Presence::yes : Presence::no;
}

// The worker leaves the folder as it is where the engine has left no catalogue to go by.
bool hadCatalogue(const Value& input, const Value& description) {
  return input.get(job::kFolder) != description.get(job::kFolder);
}

std::string packageNoteOf(const Value& input, const Value& description, Presence presence,
                          const std::string& asked) {
  std::string note = textOf(description.get(job::kProductId));
  if (!hadCatalogue(input, description)) {
    return note + ": the update engine left no catalogue that could be read";
  }
  if (!description.has(job::kSize)) return note + ": the catalogue does not offer it";
  note.append(": the catalogue offers version ").append(textOf(description.get(job::kVersion)));
  if (presence == Presence::unknown) {
    return note + "; whether its package was brought cannot be told from a copy";
  }
  note += ", and its package was not brought";
  const bool isAsked = textOf(description.get(job::kProductId)) == asked;
  return isAsked ? note : note + "; the engine was asked for " + asked + " alone";
}

bool isFinished(const Value& record, const char* command) {
  return record.get(job::kJobId) == Value(command) &&
         record.get(job::kStateId) == Value(job::kFree);
}

struct Missing {
  Value input;
  Value description;
  Presence presence;
};

// What a finished download did not bring, or may not have brought.
std::vector<Missing> missingPackages(const Value& record, bool isCopy) {
  const Value& result = record.get(job::kResult);
  const Value& inputs = record.get(job::kInputParameters);
  const Value& output = record.get(job::kOutput);
  if (!isFinished(record, job::kDownloadOnlineUpdateFile) || !result.isNumber() ||
      result.integerValue() != job::kFileNotFound || !inputs.isArray() || !output.isArray() ||
      inputs.count() != output.count()) {
    return {};
  }
  std::vector<Missing> missing;
  for (std::size_t i = 0; i < output.count(); ++i) {
    const Value& input = inputs.at(i);
    const Value& description = output.at(i);
    if (!input.isDictionary() || !description.isDictionary()) continue;
    const Presence presence = presenceOf(description, output, isCopy);
    if (presence != Presence::yes) missing.push_back({input, description, presence});
  }
  return missing;
}

// The product that the engine was asked for.
std::string askedFor(const Value& record) {
  return textOf(record.get(job::kInputParameters).at(0).get(job::kProductId));
}

}  // namespace

std::vector<std::string> packageNotes(const Value& record, bool isCopy) {
  std::vector<std::string> notes;
  for (const Missing& one : missingPackages(record, isCopy)) {
    notes.push_back(packageNoteOf(one.input, one.description, one.presence, askedFor(record)));
  }
  return notes;
}

std::string packageAdvice(const Value& record, bool isCopy) {
  const std::vector<Missing> missing = missingPackages(record, isCopy);
  const auto isAny = [&](auto what) { return std::any_of(missing.begin(), missing.end(), what); };
  if (isAny([](const Missing& one) { return !hadCatalogue(one.input, one.description); })) {
    return {};
  }
  if (isAny([](const Missing& one) { return !one.description.has(job::kSize); })) {
    return "Ask for products that the catalogue offers: \"kelvane-console query\" shows which.";
  }
  const bool isOther = isAny([&](const Missing& one) {
    return one.presence == Presence::no &&
           textOf(one.description.get(job::kProductId)) != askedFor(record);
  });
  return isOther ? "Download each product in a job of its own: the update engine is asked for the "
                   "first one of a job alone."
                 : "";
}

std::string engineNote(const Value& record, const LogStretch& log) {
  if (!isFinished(record, job::kGetOnlineUpdateData) || record.get(job::kOutput).isArray() ||
      log.isMixed || log.engineSaid.empty()) {
    return {};
  }
  return "the update engine said last: " + log.engineSaid;
}

}  // namespace kelvane::console
