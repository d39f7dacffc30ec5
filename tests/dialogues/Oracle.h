// What a firmware job has to look like from outside, as a function of what the framework answers:
// every call with its arguments, every line of the log, every reading and writing of the job file
// and every sleep, in their order. It knows nothing of the worker's code.
#pragma once

#include <string>
#include <vector>

#include "tests/dialogues/Answers.h"
#include "tests/dialogues/Decider.h"
#include "tests/dialogues/JobFileModel.h"

namespace kelvane::dialogues {

// A job and what there is to be discovered.
struct Form {
  std::string name;
  std::string meaning;
  Json jobs;                      // the job file; the job is its last record, with the log id "17"
  std::vector<std::string> wwns;  // the controllers, in the order of their discovery
  std::size_t adapters;           // the first ones; the others are subsystems
  unsigned polls;                 // at most, of each flash
  std::string firstKinds = "usqx";  // what the first controller may be: see Answers.h
};

// The scripted framework's answer to one call.
struct Answered {
  const char* function;
  Answer answer;
};

struct Dialogue {
  std::vector<Answered> answers;
  // "zr_discover(0)", "log updateFW: ...", "read", "write [...]", "sleep 2".
  std::vector<std::string> events;
};

inline constexpr char kShared[] = "/shared/";

Dialogue tell(const Form& form, Decider& decider);

}  // namespace kelvane::dialogues
