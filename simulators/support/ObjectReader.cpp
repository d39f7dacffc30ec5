#include "simulators/support/ObjectReader.h"

#include <algorithm>

#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "simulators/support/Number.h"

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

Value readJsonObject(const std::string& path) {
  Value object = platform::parseJson(platform::readFile(path));
  if (!object.isDictionary()) throw Exception("is not JSON with an object at its top");
  return object;
}

ObjectReader::ObjectReader(const Value& object, std::string where)
    : object_(object), where_(std::move(where)) {
  if (!object_.isDictionary()) throw Exception(where_ + ": must be an object");
}

std::string ObjectReader::nameOf(const std::string& key) const {
  return where_.empty() ? key : where_ + "." + key;
}

void ObjectReader::refuse(const std::string& key, const std::string& complaint) const {
  throw Exception(nameOf(key) + ": " + complaint);
}

const Value& ObjectReader::take(const std::string& key) {
  known_.insert(key);
  return object_.get(key);
}

std::string ObjectReader::text(const std::string& key) {
  const Value& value = take(key);
  if (value.isNothing()) refuse(key, "is missing");
  if (!value.isString()) refuse(key, "must be a text");
  return value.string();
}

std::string ObjectReader::text(const std::string& key, const std::string& fallback) {
  return take(key).isNothing() ? fallback : text(key);
}

std::size_t ObjectReader::choice(const std::string& key, const std::vector<std::string>& choices,
                                 bool required) {
  const std::string chosen = required ? text(key) : text(key, choices.front());
  const auto found = std::find(choices.begin(), choices.end(), chosen);
  if (found == choices.end()) refuse(key, "must be one of " + listed(choices));
  return static_cast<std::size_t>(found - choices.begin());
}

std::uint64_t ObjectReader::code(const std::string& key, std::uint64_t most) {
  const Value& value = take(key);
  if (value.isNothing()) refuse(key, "is missing");
  const std::optional<std::uint64_t> number = codeNumber(value, most);
  if (!number) {
    refuse(key,
           "must be a whole number, or a text like \"0x12\", from 0 to " + std::to_string(most));
  }
  return *number;
}

std::uint64_t ObjectReader::code(const std::string& key, std::uint64_t most,
                                 std::uint64_t fallback) {
  return take(key).isNothing() ? fallback : code(key, most);
}

std::optional<double> ObjectReader::duration(const std::string& key) {
  const Value& value = take(key);
  if (value.isNothing()) return {};
  const std::optional<double> duration = seconds(value);
  if (!duration) refuse(key, "must be a number of seconds, 0 or more");
  return duration;
}

double ObjectReader::percent(const std::string& key) {
  const Value& value = take(key);
  if (value.isNothing()) refuse(key, "is missing");
  const std::optional<std::uint64_t> number = wholeNumber(value, kMostPercent);
  if (!number) refuse(key, "must be a whole number from 0 to 100");
  return static_cast<double>(*number);
}

std::uint64_t ObjectReader::number(const std::string& key, std::uint64_t most) {
  const Value& value = take(key);
  if (value.isNothing()) return 0;
  const std::optional<std::uint64_t> number = wholeNumber(value, most);
  if (!number) refuse(key, "must be a whole number from 0 to " + std::to_string(most));
  return *number;
}

bool ObjectReader::truth(const std::string& key) {
  const Value& value = take(key);
  if (value.isNothing()) return false;
  if (value.kind() != Value::Kind::boolean) refuse(key, "must be true or false");
  return value.truth();
}

std::vector<std::string> ObjectReader::texts(const std::string& key) {
  const Value& list = take(key);
  if (list.isNothing()) return {};
  if (!list.isArray()) refuse(key, "must be a list");
  std::vector<std::string> found;
  for (const Value& text : list.elements()) {
    if (!text.isString()) refuse(key, "must be a list of texts");
    found.push_back(text.string());
  }
  return found;
}

const Value& ObjectReader::object(const std::string& key) {
  const Value& value = take(key);
  if (!value.isNothing() && !value.isDictionary()) refuse(key, "must be an object");
  return value;
}

void ObjectReader::each(const std::string& key, const std::function<void(ObjectReader&)>& read) {
  const Value& list = take(key);
  if (list.isNothing()) return;
  if (!list.isArray()) refuse(key, "must be a list");
  for (std::size_t i = 0; i < list.count(); ++i) {
    ObjectReader reader(list.at(i), nameOf(key) + "[" + std::to_string(i) + "]");
    read(reader);
    reader.finish();
  }
}

void ObjectReader::finish() const {
  for (const auto& [key, value] : object_.entries()) {
    if (!known_.contains(key)) refuse(key, "is not a known key");
  }
}

}  // namespace kelvane::simulator
