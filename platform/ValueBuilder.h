// Builds a value from what a reader meets, with a stack of the containers that are still open
// instead of recursion.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "platform/Value.h"

namespace kelvane::platform {

// Every step returns whether it was possible; after one that was not, the builder is of no use.
class ValueBuilder {
 public:
  // `depth` is the most containers that may stand inside one another.
  explicit ValueBuilder(std::size_t depth) : depth_(depth) {}

  // An array or a dictionary begins, inside the one that is open.
  bool open(Value container) {
    if (open_.size() == depth_) return false;
    open_.push_back({std::move(container), {}, false});
    return true;
  }
  // It ends, and becomes an element or value of the one around it.
  bool close() {
    if (open_.empty() || open_.back().hasKey) return false;
    Value closed = std::move(open_.back().container);
    open_.pop_back();
    if (!open_.empty()) return add(std::move(closed));
    result_ = std::move(closed);
    return true;
  }
  // The key of the next value: in a dictionary, where none waits for its value.
  bool key(std::string name) {
    if (open_.empty() || open_.back().container.isArray() || open_.back().hasKey) return false;
    open_.back().key = std::move(name);
    open_.back().hasKey = true;
    return true;
  }
  // A value: an element of the open array, or that of the key in the open dictionary. Of a key that
  // stands twice the last value counts.
  bool add(Value value) {
    if (open_.empty()) return false;
    Open& parent = open_.back();
    if (parent.container.isArray()) {
      parent.container.append(std::move(value));
      return true;
    }
    if (!parent.hasKey) return false;
    parent.container.set(parent.key, std::move(value));
    parent.hasKey = false;
    return true;
  }

  bool isOpen() const { return !open_.empty(); }
  bool isInDictionary() const { return isOpen() && open_.back().container.isDictionary(); }

  // The container that was closed last of all; nothing before that.
  Value take() { return std::move(result_); }

 private:
  struct Open {
    Value container;
    std::string key;
    bool hasKey;
  };

  std::size_t depth_;
  std::vector<Open> open_;
  Value result_;
};

}  // namespace kelvane::platform
