// What the result of a finished job means, and what to do: what the console explains, and what
// docs/result-codes.md is held against.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace kelvane::console {

// Texts are UTF-8 and whole sentences where they are more than a word.
struct ResultCode {
  std::int64_t code;  // "result"
  const char* name;   // as the worker's sources call it
  const char* text;   // "resultStr"; of a framework status as the simulated framework words it
  const char* meaning;
  const char* whoActs;  // "nobody", "user" or "support"
  const char* advice;
  bool tryAgain;  // whether the same job can succeed without a change to it
};

// Every code that the worker makes or knows, in ascending order. A firmware job can end with other
// statuses of the framework: those have only their text.
std::span<const ResultCode> resultCodes();

// The entry of the code; null where it has none.
const ResultCode* findResultCode(std::int64_t code);

// The entry of the name, upper and lower case alike; null where there is none.
const ResultCode* findResultCodeNamed(const std::string& name);

}  // namespace kelvane::console
