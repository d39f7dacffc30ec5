// The command blocks of a page: fenced ones in the language "sh", and indented ones.
#pragma once

#include <string>
#include <vector>

namespace kelvane::docs {

struct CommandBlock {
  std::string page;
  std::string text;   // without fence, indentation and prompts; ends with a line feed
  std::string shown;  // the output that the page shows below it; empty where it shows none
  // What tells it from the page's other blocks.
  std::string firstLine() const { return text.substr(0, text.find('\n')); }
};

// In their order. Output is what stands in a "text" fence behind prose that ends with "print:" or
// "prints:"; and in an indented block that begins with a prompt ("$ ") the lines that are no
// commands.
std::vector<CommandBlock> commandBlocks(const std::string& page, const std::string& text);

}  // namespace kelvane::docs
