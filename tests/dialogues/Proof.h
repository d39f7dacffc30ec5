// The dialogues of a job, played with the worker and held against the oracle.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/dialogues/Oracle.h"

namespace kelvane::dialogues {

// Every form of job whose dialogues are told.
const std::vector<Form>& forms();
// Raises where there is none of that name.
const Form& formNamed(const std::string& name);

// What is seen of the worker while the framework answers as in the dialogue. From the first call on
// that the dialogue does not have at this place, every call succeeds and every flash is done.
std::vector<std::string> play(const Form& form, const Dialogue& dialogue);

// Where the two lists part, with what stood before; empty where they are the same.
std::string difference(const std::vector<std::string>& expected,
                       const std::vector<std::string>& seen);

// The dialogue played and judged: where it differs from what was told, or which law it breaks;
// empty where it does neither.
std::string deviationOf(const Form& form, const Dialogue& dialogue);

struct Deviation {
  std::string form;
  std::uint64_t number;  // of the dialogue, from 1
  Script script;
  std::string difference;
};
std::string textOf(const Deviation& deviation);

// How many dialogues the form has; each that deviates is told.
std::uint64_t prove(const Form& form, const std::function<void(const Deviation&)>& deviates);

}  // namespace kelvane::dialogues
