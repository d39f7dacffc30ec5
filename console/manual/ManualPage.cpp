#include "console/manual/ManualPage.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace kelvane::console {
namespace {

// "-h, --help", each in bold.
std::string boldNames(const OptionShape& option) {
  std::string names;
  for (const std::string& name : option.names) {
    if (!names.empty()) names += ", ";
    names += "\\fB" + asRoff(name) + "\\fR";
  }
  return names;
}

std::string italic(const std::string& text) { return "\\fI" + asRoff(text) + "\\fR"; }

std::string withValue(const std::string& names, const OptionShape& option) {
  return option.valueName.empty() ? names : names + " " + italic(option.valueName);
}

// How it stands in a synopsis: in brackets where it may be left out.
std::string inSynopsis(const std::string& text, const OptionShape& option) {
  const std::string more = option.repeated ? " ..." : "";
  return option.required ? text + more : "[" + text + more + "]";
}

bool isHelp(const OptionShape& option) {
  return std::count(option.names.begin(), option.names.end(), "--help") != 0;
}

std::string synopsisOf(const CommandShape& command, const std::string& app) {
  std::string page = ".PP\n\\fB" + asRoff(app + " " + command.name) + "\\fR\n";
  for (const OptionShape& option : command.options) {
    if (isHelp(option)) continue;
    page += inSynopsis(withValue(boldNames(option), option), option) + "\n";
  }
  for (const OptionShape& argument : command.arguments) {
    page += inSynopsis(italic(argument.valueName), argument) + "\n";
  }
  return page;
}

std::string synopsis(const CommandShape& app) {
  std::string page;
  for (const CommandShape& command : app.commands) page += synopsisOf(command, app.name);
  return page + ".PP\n\\fB" + asRoff(app.name) + "\\fR [\\fICOMMAND\\fR] \\fB\\-\\-help\\fR\n";
}

std::string sentence(const std::string& text) {
  return text.empty() || text.back() == '.' ? text : text + ".";
}

std::string entry(const std::string& tag, const OptionShape& option) {
  std::string page = ".TP\n" + tag + "\n" + asRoff(sentence(option.description)) + "\n";
  std::string choices;
  for (const std::string& choice : option.choices)
    choices += (choices.empty() ? "" : ", ") + choice;
  if (!choices.empty()) page += "One of: " + asRoff(choices) + ".\n";
  return page;
}

// Of several commands, described once for all of them.
bool isSame(const OptionShape& left, const OptionShape& right) {
  return left.names == right.names && left.valueName == right.valueName &&
         left.description == right.description && left.choices == right.choices;
}

bool isIn(const std::vector<OptionShape>& options, const OptionShape& wanted) {
  return std::any_of(options.begin(), options.end(),
                     [&](const OptionShape& option) { return isSame(option, wanted); });
}

bool isCommon(const CommandShape& app, const OptionShape& option) {
  return std::count_if(app.commands.begin(), app.commands.end(), [&](const CommandShape& command) {
           return isIn(command.options, option);
         }) > 1;
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

std::string commandText(const CommandShape& command, const CommandShape& app) {
  std::string page = ".SS " + asRoff(command.name) + "\n";
  page += asRoff(sentence(command.description)) + "\n";
  for (const OptionShape& argument : command.arguments) {
    page += entry(italic(argument.valueName), argument);
  }
  for (const OptionShape& option : command.options) {
    if (!isCommon(app, option)) page += entry(withValue(boldNames(option), option), option);
  }
  return page + footerText(command.footer);
}

std::string commands(const CommandShape& app) {
  std::string page;
  for (const CommandShape& command : app.commands) page += commandText(command, app);
  return page;
}

// The application's own options and those that several commands have, each once.
std::vector<OptionShape> commonOptions(const CommandShape& app) {
  std::vector<OptionShape> found = app.options;
  for (const CommandShape& command : app.commands) {
    for (const OptionShape& option : command.options) {
      if (!isIn(found, option) && isCommon(app, option)) found.push_back(option);
    }
  }
  return found;
}

std::string options(const CommandShape& app) {
  std::string page;
  for (const OptionShape& option : commonOptions(app)) {
    page += entry(withValue(boldNames(option), option), option);
  }
  return page;
}

std::string environment(const CommandShape& app) {
  std::vector<std::string> told;
  std::string page;
  for (const CommandShape& command : app.commands) {
    for (const OptionShape& option : command.options) {
      if (option.variable.empty() || std::count(told.begin(), told.end(), option.variable) != 0) {
        continue;
      }
      told.push_back(option.variable);
      page += ".TP\n\\fB" + asRoff(option.variable) + "\\fR\nStands in for " + boldNames(option) +
              " where that is not given.\n";
    }
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

std::string manualPage(const std::string& handWritten, const CommandShape& app) {
  std::string page = handWritten;
  put(page, "SYNOPSIS", synopsis(app));
  put(page, "COMMANDS", commands(app));
  put(page, "OPTIONS", options(app));
  put(page, "ENVIRONMENT", environment(app));
  return page;
}

}  // namespace kelvane::console
