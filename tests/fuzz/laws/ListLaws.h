// Property lists that were read, and the packages of a catalogue that were chosen.
#pragma once

#include <optional>
#include <string>

#include "platform/Value.h"
#include "tests/fuzz/Selection.h"

namespace kelvane::fuzz {

// What a property list was read as; what the log shows of it; and it as JSON, nothing where it was
// found to have no such form.
void requireList(const platform::Value& list, const std::string& shown,
                 const std::optional<std::string>& text);

// A list that was written to `bytes`, and what was read of them, which is nothing where the list is
// too deep.
void requireReadList(const platform::Value& made, bool isTooDeep, const platform::Value& read,
                     const std::string& bytes);

// The package that was chosen for a product, of a catalogue's rules, and what the choice has to be.
void requireChosen(const Choice& choice, const platform::Value& rules, const std::string& product,
                   const platform::Value& chosen);

}  // namespace kelvane::fuzz
