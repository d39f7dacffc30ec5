#include "tests/dialogues/Decider.h"

#include <sstream>
#include <stdexcept>

namespace kelvane::dialogues {
namespace {

// Spreads neighbouring numbers evenly.
std::uint64_t mixed(std::uint64_t number) {
  number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
  number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
  return number ^ (number >> 31U);
}

// Another pick for each number and each place in the script, to which it is added.
unsigned pickedByNumber(std::uint64_t number, unsigned count, Script& script) {
  const std::uint64_t place = (number << 8U) + script.size();
  script.push_back(static_cast<unsigned>(mixed(place) % count));
  return script.back();
}

}  // namespace

std::string textOf(const Script& script) {
  std::string text;
  for (const unsigned pick : script) {
    if (!text.empty()) text += '.';
    text += std::to_string(pick);
  }
  return text;
}

Script scriptOf(const std::string& text) {
  Script script;
  std::istringstream stream(text);
  for (std::string pick; std::getline(stream, pick, '.');) {
    script.push_back(static_cast<unsigned>(std::stoul(pick)));
  }
  return script;
}

bool Tree::next() {
  if (number_ != 0) {
    while (!path_.empty() && path_.back().taken + 1 == path_.back().count) path_.pop_back();
    if (path_.empty()) return false;
    ++path_.back().taken;
  }
  ++number_;
  depth_ = 0;
  isFree_ = false;
  script_.clear();
  return true;
}

unsigned Tree::branch(unsigned count) {
  if (isFree_) return turn(count);
  if (depth_ == path_.size()) path_.push_back({0, count});
  const Pick& pick = path_[depth_++];
  if (pick.count != count) throw std::logic_error("a branch depends on what may not matter");
  script_.push_back(pick.taken);
  return pick.taken;
}

unsigned Tree::turn(unsigned count) { return pickedByNumber(number_, count, script_); }

void Tree::cut(const std::string& state) {
  if (isFree_) return;
  std::string way;
  for (std::size_t i = 0; i < depth_; ++i) way += static_cast<char>(path_[i].taken);
  const auto first = firstWays_.try_emplace(state, way).first;
  isFree_ = first->second != way;
}

unsigned Walk::branch(unsigned count) {
  if (mixed((number_ << 8U) + script_.size() + 128) % 16 == 0) return turn(count);
  script_.push_back(0);
  return 0;
}

unsigned Walk::turn(unsigned count) { return pickedByNumber(number_, count, script_); }

unsigned Replay::turn(unsigned count) {
  const unsigned pick = next_ < script_.size() ? script_[next_++] : 0;
  if (pick >= count) throw std::out_of_range("the script is not one of this job's");
  return pick;
}

}  // namespace kelvane::dialogues
