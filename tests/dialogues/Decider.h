// Who decides what the framework answers, one pick after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kelvane::dialogues {

class Decider {
 public:
  virtual ~Decider() = default;
  // One of `count` kinds of answer that the worker tells apart.
  virtual unsigned branch(unsigned count) = 0;
  // The same, where none of the kinds is a failure, or any of them goes on.
  virtual unsigned fork(unsigned count) { return branch(count); }
  // One of `count` that mean the same to the worker: all have their turn, in different dialogues.
  virtual unsigned turn(unsigned count) = 0;
  // What can still happen depends on the state alone, however the dialogue came here.
  virtual void cut(const std::string& state) = 0;
};

// Every pick of one dialogue, by which it can be told again.
using Script = std::vector<unsigned>;
std::string textOf(const Script& script);  // "0.3.1"
Script scriptOf(const std::string& text);

// All dialogues of a tree, depth first: the branches of the last pick first. Behind a cut, the
// branches are told whole only where the state was met first; whoever comes to it on another way
// goes on along one of them, which differs from dialogue to dialogue.
class Tree : public Decider {
 public:
  // Goes on to the next dialogue, the first at first; false behind the last one.
  bool next();
  std::uint64_t number() const { return number_; }  // from 1
  const Script& script() const { return script_; }

  unsigned branch(unsigned count) override;
  unsigned turn(unsigned count) override;
  void cut(const std::string& state) override;

 private:
  struct Pick {
    unsigned taken;
    unsigned count;
  };
  std::vector<Pick> path_;  // the branches on the way to this dialogue
  std::size_t depth_ = 0;   // how far along it the dialogue has come
  bool isFree_ = false;     // behind a cut whose state was met on another way
  std::uint64_t number_ = 0;
  Script script_;
  std::unordered_map<std::string, std::string> firstWays_;  // to each state
};

// One way through a tree, another for each number: at every branch mostly the first, which leads
// on, else any.
class Walk : public Decider {
 public:
  explicit Walk(std::uint64_t number) : number_(number) {}
  const Script& script() const { return script_; }

  unsigned branch(unsigned count) override;
  unsigned fork(unsigned count) override { return turn(count); }
  unsigned turn(unsigned count) override;
  void cut(const std::string&) override {}

 private:
  std::uint64_t number_;
  Script script_;
};

// One dialogue again.
class Replay : public Decider {
 public:
  explicit Replay(Script script) : script_(std::move(script)) {}
  unsigned branch(unsigned count) override { return turn(count); }
  unsigned turn(unsigned count) override;
  void cut(const std::string&) override {}

 private:
  Script script_;
  std::size_t next_ = 0;
};

}  // namespace kelvane::dialogues
