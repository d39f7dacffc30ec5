#include "console/manual/ManualPage.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "console/display/Words.h"

namespace kelvane::console {
namespace {

// "-h, --help", each in bold.
std::string boldNames(const Option& option) {
  std::string names;
  for (const std::string& name : option.names) {
    if (!names.empty()) names += ", ";
    names += "\\fB" + asRoff(name) + "\\fR";
  }
  return names;
}

std::string italic(const std::string& text) { return "\\fI" + asRoff(text) + "\\fR"; }

std::string withValue(const std::string& names, const Option& option) {
  return option.valueName.empty() ? names : names + " " + italic(option.valueName);
}

// How it stands in a synopsis: in brackets where it may be left out.
std::string inSynopsis(const std::string& text, const Option& option) {
  const std::string more = option.repeated ? " ..." : "";
  return option.required ? text + more : "[" + text + more + "]";
}

std::string synopsisOf(const Command& command, const std::string& program) {
  std::string page = ".PP\n\\fB" + asRoff(program + " " + command.name) + "\\fR\n";
  for (const Option& option : command.options) {
    if (isHelp(option)) continue;
    page += inSynopsis(withValue(boldNames(option), option), option) + "\n";
  }
  for (const Option& argument : command.arguments) {
    page += inSynopsis(italic(argument.valueName), argument) + "\n";
  }
  return page;
}

std::string synopsis(const CommandTable& table) {
  std::string page;
  for (const Command& command : table.commands) page += synopsisOf(command, table.name);
  return page + ".PP\n\\fB" + asRoff(table.name) + "\\fR [\\fICOMMAND\\fR] \\fB\\-\\-help\\fR\n";
}

std::string sentence(const std::string& text) {
  return text.empty() || text.back() == '.' ? text : text + ".";
}

std::string entry(const std::string& tag, const Option& option) {
  std::string page = ".TP\n" + tag + "\n" + asRoff(sentence(option.description)) + "\n";
  if (!option.choices.empty()) page += "One of: " + asRoff(joined(option.choices, ", ")) + ".\n";
  return page;
}

// Of several commands, described once for all of them.
bool isSame(const Option& left, const Option& right) {
  return left.names == right.names && left.valueName == right.valueName &&
         left.description == right.description && left.choices == right.choices;
}

bool isIn(const std::vector<Option>& options, const Option& wanted) {
  return std::any_of(options.begin(), options.end(),
                     [&](const Option& option) { return isSame(option, wanted); });
}

bool isCommon(const CommandTable& table, const Option& option) {
  return std::count_if(table.commands.begin(), table.commands.end(),
                       [&](const Command& command) { return isIn(command.options, option); }) > 1;
}

// Lines that begin with blanks are shown as they stand.
std::string footerText(const std::string& footer) {
  std::istringstream lines(footer);
  std::string page = footer.empty() ? "" : ".PP\n";
  bool isCode = false;
  for (std::string line; std::getline(lines, line);) {
    const bool indented = line.rfind("  ", 0) == 0;
    if (indented != isCode) page += indented ? ".RS 4\n.nf\n" : ".fi\n.RE\n";
    isCode = indented;
    page += asRoff(indented ? line.substr(2) : line) + "\n";
  }
  return page + (isCode ? ".fi\n.RE\n" : "");
}

std::string commandText(const Command& command, const CommandTable& table) {
  std::string page = ".SS " + asRoff(command.name) + "\n";
  page += asRoff(sentence(command.description)) + "\n";
  for (const Option& argument : command.arguments) {
    page += entry(italic(argument.valueName), argument);
  }
  for (const Option& option : command.options) {
    if (!isCommon(table, option)) page += entry(withValue(boldNames(option), option), option);
  }
  return page + footerText(command.footer);
}

std::string commands(const CommandTable& table) {
  std::string page;
  for (const Command& command : table.commands) page += commandText(command, table);
  return page;
}

// All of them, those of the sub-commands behind the program's own.
std::vector<Option> allOptions(const CommandTable& table) {
  std::vector<Option> all = table.options;
  for (const Command& command : table.commands) {
    all.insert(all.end(), command.options.begin(), command.options.end());
  }
  return all;
}

// The program's own options and those that several commands have, each once.
std::vector<Option> commonOptions(const CommandTable& table) {
  std::vector<Option> found = table.options;
  for (const Option& option : allOptions(table)) {
    if (!isIn(found, option) && isCommon(table, option)) found.push_back(option);
  }
  return found;
}

std::string options(const CommandTable& table) {
  std::string page;
  for (const Option& option : commonOptions(table)) {
    page += entry(withValue(boldNames(option), option), option);
  }
  return page;
}

std::string environment(const CommandTable& table) {
  std::vector<std::string> told;
  std::string page;
  for (const Option& option : allOptions(table)) {
    if (option.variable.empty() || std::count(told.begin(), told.end(), option.variable) != 0) {
      continue;
    }
    told.push_back(option.variable);
    page += ".TP\n\\fB" + asRoff(option.variable) + "\\fR\nStands in for " + boldNames(option) +
            " where that is not given.\n";
  }
  return page;
}

void put(std::string& page, const std::string& part, const std::string& text) {
  const std::string line = ".\\\" @" + part + "@\n";
  const std::size_t place = page.find(line);
  if (place == std::string::npos) throw std::runtime_error("the page has no place for " + part);
  page.replace(place, line.size(), text);
}

}  // namespace

std::string asRoff(const std::string& text) {
  std::string roff;
  for (const char character : text) {
    const bool beginsLine = roff.empty() || roff.back() == '\n';
    if (beginsLine && (character == '.' || character == '\'')) roff += "\\&";
    if (character == '\\') roff += "\\e";
    if (character == '-') roff += '\\';
    if (character != '\\') roff += character;
  }
  return roff;
}

std::string manualPage(const std::string& handWritten, const CommandTable& table) {
  std::string page = handWritten;
  put(page, "SYNOPSIS", synopsis(table));
  put(page, "COMMANDS", commands(table));
  put(page, "OPTIONS", options(table));
  put(page, "ENVIRONMENT", environment(table));
  return page;
}

}  // namespace kelvane::console
