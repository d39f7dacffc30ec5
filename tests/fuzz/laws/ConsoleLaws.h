// What the console shows of files, beside what it may show.
#pragma once

#include <cstddef>
#include <string>

namespace kelvane::fuzz {

// Whatever a file holds, no command ends as by a mistake of its own.
void requireForeseen(int exitCode, const std::string& messages);

void requireFitting(const std::string& text, std::size_t columns);

// One object or list over several lines, or one in each.
void requireJson(const std::string& text);

// The text without what the console colours it with: one of three sequences, and one that ends it.
// Any other one breaks a law.
std::string withoutColours(const std::string& text);
// `coloured` is `plain`, which has no sequences, but for the colours; of JSON without exception.
void requireSameInColour(const std::string& plain, const std::string& coloured, bool isJson);

// The text without what the terminal view draws with: the way up to the first line, the rest of
// each line and all below the last erased.
std::string withoutDrawing(const std::string& drawn, std::size_t columns);

// A report is a well-formed page that steers nobody, without a script.
void requirePage(const std::string& page);

}  // namespace kelvane::fuzz
