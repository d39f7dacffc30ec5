// The job file as it has to stand after each step, with the two texts of it that can be seen: its
// own, and the one that log lines show. Made without the platform's values.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace kelvane::dialogues {

using Json = nlohmann::ordered_json;

// What "%@" shows of a value; a container stands inside `level` others.
std::string shown(const Json& value, int level = 0);

// Every key of `changes` set in the dictionary.
void setAll(Json& dictionary, const Json& changes);

class JobFileModel {
 public:
  explicit JobFileModel(Json jobs) : jobs_(std::move(jobs)) {}

  // The job that runs is the last of the file.
  const Json& job() const { return jobs_.back(); }
  void change(const Json& changes) {
    setAll(jobs_.back(), changes);
    text_.clear();
    shown_.clear();
  }

  const std::string& text() {
    if (text_.empty()) text_ = jobs_.dump(2);
    return text_;
  }
  const std::string& shownText() {
    if (shown_.empty()) shown_ = shown(jobs_);
    return shown_;
  }

 private:
  Json jobs_;
  std::string text_;  // made when it is asked for
  std::string shown_;
};

}  // namespace kelvane::dialogues
