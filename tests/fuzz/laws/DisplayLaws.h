// Text for people, beside what was made of it to fit.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kelvane::fuzz {

void requireWrapped(const std::string& text, std::size_t columns,
                    const std::vector<std::string>& lines);
void requireFitted(const std::string& text, std::size_t columns, const std::string& fitted);
void requireShortened(const std::string& shown, std::size_t columns);
// A line of a table.
void requireRow(const std::string& line, std::size_t columns, bool isAscii);
// In a terminal; the answer is typed behind it.
void requireQuestion(const std::string& question, std::size_t columns, bool isAscii);
// A shell makes the text of it.
void requireQuoted(const std::string& text, const std::string& quoted);

}  // namespace kelvane::fuzz
