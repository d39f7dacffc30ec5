// A reference page, taken apart into its sections, tables and code blocks.
#pragma once

#include <string>
#include <vector>

namespace kelvane::docs {

// The bytes of a file of the source tree, such as "docs/log.md". Raises where it cannot be read.
std::string readSource(const std::string& name);

// What stands between this heading, such as "## Keys", and the next one that is not below it.
// Raises where the page has no such heading.
std::string section(const std::string& page, const std::string& heading);

// The code blocks of a language, without their fences, each ending with a line feed.
std::vector<std::string> codeBlocks(const std::string& text, const std::string& language);

// The rows of all tables in the text, without the headings. Cells are trimmed.
using Row = std::vector<std::string>;
std::vector<Row> tableRows(const std::string& text);

// The names in backticks in the first column of these rows.
std::vector<std::string> namesOf(const std::vector<Row>& rows);

}  // namespace kelvane::docs
