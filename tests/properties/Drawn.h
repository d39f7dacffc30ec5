// What the properties are tried on: texts, numbers and values, drawn at random and, where a law is
// broken, made smaller as long as it stays so. The same ones every time; RC_PARAMS="seed=..." in
// the environment draws others.
#pragma once

#include <iosfwd>
#include <string>

#include <rapidcheck/gtest.h>

#include "platform/Value.h"

namespace kelvane::platform {

// For the message of a law that is broken.
void showValue(const Value& value, std::ostream& out);

}  // namespace kelvane::platform

namespace kelvane::properties {

// From the first one on, the end excluded, each as likely: RapidCheck's own range is that of its
// size's part, which for a small size is the first one alone.
template <typename T>
rc::Gen<T> between(T first, T end) {
  return rc::gen::resize(rc::kNominalSize, rc::gen::inRange<T>(first, end));
}

// UTF-8, with what has to be escaped, steers or is wide.
rc::Gen<std::string> texts();
// Any bytes, mostly text.
rc::Gen<std::string> bytes();
// Letters, digits and signs of one column each.
rc::Gen<std::string> words();
// A number as JSON may have it, to the digit.
rc::Gen<std::string> numbers();
// What JSON can have: an array, or an object, with all kinds of values in it.
rc::Gen<platform::Value> containers();
rc::Gen<platform::Value> objects();
// The same as property lists can have it.
rc::Gen<platform::Value> propertyLists();

}  // namespace kelvane::properties
