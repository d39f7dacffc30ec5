#include "console/command_line/CommandShape.h"

#include <CLI/CLI.hpp>

namespace kelvane::console {
namespace {

constexpr char kLimits = ':';  // begins what limits a value, after its name: "TEXT:{a,b}"

std::vector<std::string> namesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

// The words of "{a,b}"; none where the text has no such part.
std::vector<std::string> choicesIn(const std::string& limits) {
  const std::size_t open = limits.find('{');
  const std::size_t close = limits.find('}', open);
  if (close == std::string::npos) return {};
  return CLI::detail::split(limits.substr(open + 1, close - open - 1), ',');
}

OptionShape shapeOf(const CLI::Option& option) {
  OptionShape shape;
  const std::string type = option.get_type_size_max() == 0 ? "" : option.get_type_name();
  shape.names = namesOf(option);
  shape.valueName = type.substr(0, type.find(kLimits));
  shape.description = option.get_description();
  shape.variable = option.get_envname();
  shape.choices = choicesIn(type);
  shape.required = option.get_required();
  shape.repeated = option.get_items_expected_max() > 1;
  return shape;
}

bool isShown(const CLI::Option* option) { return !option->get_group().empty(); }

}  // namespace

CommandShape shapeOf(const CLI::App& app) {
  CommandShape shape;
  shape.name = app.get_name();
  shape.description = app.get_description();
  shape.footer = app.get_footer();
  for (const CLI::Option* option : app.get_options(isShown)) {
    (option->get_positional() ? shape.arguments : shape.options).push_back(shapeOf(*option));
  }
  const auto all = [](const CLI::App* command) { return !command->get_group().empty(); };
  for (const CLI::App* command : app.get_subcommands(all)) {
    shape.commands.push_back(shapeOf(*command));
  }
  return shape;
}

ValueKind kindOf(const OptionShape& option) {
  if (!option.choices.empty()) return ValueKind::choice;
  const std::string& name = option.valueName;
  if (name.empty()) return ValueKind::none;
  if (name == "FOLDER" || name == "APP.app") return ValueKind::folder;
  if (name == "PATH" || name == "FILE") return ValueKind::file;
  if (name.find("=IMAGE") != std::string::npos) return ValueKind::assignedFile;
  return ValueKind::text;
}

}  // namespace kelvane::console
