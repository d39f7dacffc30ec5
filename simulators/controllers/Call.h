// One call of a framework function on its way: its arguments, its refusal, its results.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Value.h"
#include "simulators/controllers/Journal.h"
#include "simulators/controllers/Status.h"

namespace kelvane::simulator {

class Call {
 public:
  Call(std::string function, platform::Value arguments);

  const std::string& function() const { return function_; }

  // The contract has to be kept. The first breach refuses the call with the status; what comes
  // after it is not asked any more. Returns whether the call still stands.
  bool require(bool kept, std::string_view violation,
               std::uint32_t status = kStatusInvalidParameter);
  // Refuses without a breach: what the caller could not know.
  void refuse(std::uint32_t status);
  std::uint32_t refusal() const { return refusal_; }

  void result(std::string_view name, platform::Value value) {
    results_.set(name, std::move(value));
  }

  // Writes the call's line, after that of its violation.
  void journalTo(Journal& journal, const platform::Value& status) const;

 private:
  std::string function_;
  platform::Value arguments_;
  platform::Value results_ = platform::Value::dictionary();
  std::string violation_;
  std::uint32_t refusal_ = 0;
};

}  // namespace kelvane::simulator
