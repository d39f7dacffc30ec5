#include "benchmarks/floor/Script.h"

#include <algorithm>

#include "benchmarks/floor/Actions.h"
#include "benchmarks/floor/Fail.h"

namespace kelvane::floor {

// What follows a step's word, and in how many words.
enum class Takes : std::size_t { path = 1, twoPaths = 2, pathAndBytes = 3 };

struct Script::Word {
  const char* name;
  Takes takes;
  void (*action)(const Step& step);
};

const Script::Word Script::kWords[] = {
    {"read", Takes::path, [](const Step& step) { readWhole(step.path); }},
    {"replace", Takes::pathAndBytes, [](const Step& step) { replaceFile(step.path, step.bytes); }},
    {"append", Takes::pathAndBytes, [](const Step& step) { appendLine(step.path, step.bytes); }},
    {"copytree", Takes::twoPaths, [](const Step& step) { copyTree(step.path, step.other); }},
    {"removetree", Takes::path, [](const Step& step) { removeTree(step.path); }},
    {"rename", Takes::twoPaths, [](const Step& step) { renamePath(step.path, step.other); }},
    {"makefolder", Takes::path, [](const Step& step) { makeFolder(step.path); }},
    {"sync", Takes::path, [](const Step& step) { synchroniseDisk(step.path); }},
    {"syncfolder", Takes::path, [](const Step& step) { synchroniseFolder(step.path); }},
    {"spawn", Takes::path, [](const Step& step) { runProgram(step.path); }},
};

namespace {

std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  std::size_t start = 0;
  while (start < text.size()) {
    const std::size_t end = std::min(text.find(separator, start), text.size());
    if (end > start) pieces.emplace_back(text.substr(start, end - start));
    start = end + 1;
  }
  return pieces;
}

[[noreturn]] void refuse(const std::string& word) {
  errno = EINVAL;
  fail("the step \"" + word + "\"");
}

}  // namespace

Script::Script(const std::string& path) : parts_(1), bytes_(mappedFile(path + ".bytes")) {
  for (const std::string& line : split(mappedFile(path), '\n')) add(split(line, ' '));
}

void Script::add(const std::vector<std::string>& words) {
  if (words[0] == "repeat" && words.size() == 2) {
    parts_.push_back({std::stol(words[1]), {}});
    return;
  }
  if (words[0] == "end") {
    parts_.emplace_back();
    return;
  }
  for (const Word& word : kWords) {
    if (words[0] != word.name) continue;
    if (words.size() != 1 + static_cast<std::size_t>(word.takes)) refuse(words[0]);
    Step step = {word.action, words[1], "", {}};
    if (word.takes == Takes::twoPaths) step.other = words[2];
    if (word.takes == Takes::pathAndBytes) {
      step.bytes = bytes_.substr(std::stoul(words[2]), std::stoul(words[3]));
    }
    parts_.back().steps.push_back(step);
    return;
  }
  refuse(words[0]);
}

void Script::run() const {
  for (const Part& part : parts_) {
    for (long i = 0; i < part.times; ++i) {
      for (const Step& step : part.steps) step.action(step);
    }
  }
}

}  // namespace kelvane::floor
