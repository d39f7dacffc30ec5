// Values as the worker's log shows them.
#pragma once

#include <string_view>

#include "platform/Value.h"

namespace kelvane::console {

// The list or object that the text is, as "%@" shows one; its other values are strings, as the log
// does not tell numbers from texts. Nothing where the text is none, or is cut.
platform::Value parseLogged(std::string_view text);

// The value as it would be read out of the log: everything but lists and objects is a string.
platform::Value asLogged(const platform::Value& value);

}  // namespace kelvane::console
