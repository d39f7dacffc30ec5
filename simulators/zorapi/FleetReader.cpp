#include "FleetReader.h"

#include <algorithm>

#include "Number.h"
#include "platform/Exception.h"

namespace kelvane::simulator {

using platform::Exception;
using platform::Value;

namespace {

constexpr std::uint64_t kMostPercent = 100;

std::string listed(const std::vector<std::string>& choices) {
  std::string text;
  for (const std::string& choice : choices) {
    if (!text.empty()) text += ", ";
    text += "\"" + choice + "\"";
  }
  return text;
}

}  // namespace

FleetReader::FleetReader(const Value& object, std::string where)
    : object_(object), where_(std::move(where)) {
  if (!object_.isDictionary()) throw Exception(where_ + ": must be an object");
}

void FleetReader::refuse(const std::string& key, const std::string& complaint) const {
  throw Exception((where_.empty() ? key : where_ + "." + key) + ": " + complaint);
}

const Value& FleetReader::take(const std::string& key) {
  known_.insert(key);
  return object_.get(key);
}

std::string FleetReader::text(const std::string& key) {
  const Value& value = take(key);
  if (value.isNothing()) refuse(key, "is missing");
  if (!value.isString()) refuse(key, "must be a text");
  return value.string();
}

std::string FleetReader::text(const std::string& key, const std::string& fallback) {
  return take(key).isNothing() ? fallback : text(key);
}

std::size_t FleetReader::choice(const std::string& key, const std::vector<std::string>& choices,
                                bool required) {
  const std::string chosen = required ? text(key) : text(key, choices.front());
  const auto found = std::find(choices.begin(), choices.end(), chosen);
  if (found == choices.end()) refuse(key, "must be one of " + listed(choices));
  return static_cast<std::size_t>(found - choices.begin());
}

std::uint64_t FleetReader::code(const std::string& key, std::uint64_t most) {
  const Value& value = take(key);
  if (value.isNothing()) refuse(key, "is missing");
  const std::optional<std::uint64_t> number = codeNumber(value, most);
  if (!number) {
    refuse(key,
           "must be a whole number, or a text like \"0x12\", from 0 to " + std::to_string(most));
  }
  return *number;
}

std::uint64_t FleetReader::code(const std::string& key, std::uint64_t most,
                                std::uint64_t fallback) {
  return take(key).isNothing() ? fallback : code(key, most);
}

std::optional<double> FleetReader::duration(const std::string& key) {
  const Value& value = take(key);
  if (value.isNothing()) return {};
  const std::optional<double> duration = seconds(value);
  if (!duration) refuse(key, "must be a number of seconds, 0 or more");
  return duration;
}

double FleetReader::percent(const std::string& key) {
  const Value& value = take(key);
  if (value.isNothing()) refuse(key, "is missing");
  const std::optional<std::uint64_t> number = wholeNumber(value, kMostPercent);
  if (!number) refuse(key, "must be a whole number from 0 to 100");
  return static_cast<double>(*number);
}

void FleetReader::each(const std::string& key, const std::function<void(FleetReader&)>& read) {
  const Value& list = take(key);
  if (list.isNothing()) return;
  if (!list.isArray()) refuse(key, "must be a list");
  const std::string name = where_.empty() ? key : where_ + "." + key;
  for (std::size_t i = 0; i < list.count(); ++i) {
    FleetReader reader(list.at(i), name + "[" + std::to_string(i) + "]");
    read(reader);
    reader.finish();
  }
}

void FleetReader::finish() const {
  for (const auto& [key, value] : object_.entries()) {
    if (!known_.contains(key)) refuse(key, "is not a known key");
  }
}

}  // namespace kelvane::simulator
