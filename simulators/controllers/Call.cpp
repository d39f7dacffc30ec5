#include "simulators/controllers/Call.h"

#include <utility>

namespace kelvane::simulator {

using platform::Value;

Call::Call(std::string function, Value arguments)
    : function_(std::move(function)), arguments_(std::move(arguments)) {}

bool Call::require(bool kept, std::string_view violation, std::uint32_t status) {
  if (refusal_ == 0 && !kept) {
    violation_ = violation;
    refusal_ = status;
  }
  return refusal_ == 0;
}

void Call::refuse(std::uint32_t status) {
  if (refusal_ == 0) refusal_ = status;
}

void Call::journalTo(Journal& journal, const Value& status) const {
  if (!violation_.empty()) {
    journal.write(Value::dictionary({{"violation", violation_}, {"function", function_}}));
  }
  Value line = Value::dictionary({{"function", function_}, {"arguments", arguments_}});
  if (!status.isNothing()) line.set("status", status);
  if (!results_.entries().empty()) line.set("results", results_);
  journal.write(line);
}

}  // namespace kelvane::simulator
