// A floor program's script: a step a line, its words apart by blanks. Between "repeat N" and "end"
// stand steps that are done N times. What is written is named by its start and length in the file
// of bytes that stands beside the script, mapped ahead.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelvane::floor {

class Script {
 public:
  explicit Script(const std::string& path);
  void run() const;

 private:
  struct Step {
    void (*action)(const Step& step);
    std::string path;
    std::string other;       // the second path
    std::string_view bytes;  // or what is written
  };
  struct Part {
    long times = 1;
    std::vector<Step> steps;
  };
  struct Word;
  static const Word kWords[];

  void add(const std::vector<std::string>& words);

  std::vector<Part> parts_;
  std::string_view bytes_;
};

}  // namespace kelvane::floor
