// What a firmware job has to look like from outside, as a function of what the framework answers:
// every call with its arguments, every line of the log, every reading and writing of the job file
// and every sleep, in their order. It knows nothing of the worker's code.
#pragma once

#include <cstddef>
#include <cstdint>
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
  Json job;  // its record, in the end
};

// Where the answers come from: each call is announced, and then its answer asked for.
class Answerer {
 public:
  virtual ~Answerer() = default;
  virtual void asked(const char* function) = 0;
  // `kind` draws one, where it is drawn.
  virtual std::uint32_t status(std::uint32_t (*kind)(Decider&)) = 0;
  // Of a call that failed, whether it told its number all the same.
  virtual bool tellsCount() = 0;
  // Of this one of those discovered; of one of the kinds, where it is drawn, and of which.
  virtual std::uint16_t product(std::size_t device, const std::string& kinds, char& kind) = 0;
  virtual Progress progress(Progress (*kind)(Decider&, const Progress&, bool),
                            const Progress& before, bool isLast) = 0;
  virtual std::uint32_t interfaceByte() = 0;
  virtual std::uint32_t updateFlag() = 0;
  virtual std::string description(std::uint32_t status) = 0;
  // As of a Decider.
  virtual void cut(const std::string& state) = 0;
};

inline constexpr char kShared[] = "/shared/";

// Of the events all, or the calls and sleeps alone.
enum class Told { all, calls };
Dialogue tell(const Form& form, Answerer& answerer, Told told);
// All of them, as the decider has it.
Dialogue tell(const Form& form, Decider& decider);

}  // namespace kelvane::dialogues
