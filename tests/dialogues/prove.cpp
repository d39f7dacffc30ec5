// Plays dialogues with the worker, and tells where it deviates from the oracle.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "tests/dialogues/Proof.h"

namespace kelvane::dialogues {
namespace {

constexpr char kUsage[] =
    "usage: prove_dialogues [FORM]...       all dialogues of these forms of job, or of all\n"
    "       prove_dialogues forms           the forms\n"
    "       prove_dialogues FORM NUMBER     one dialogue, with all that is expected of it\n"
    "       prove_dialogues FORM SCRIPT     the same by its script, \"0.3.1\"\n";

int listForms() {
  for (const Form& form : forms()) {
    std::printf("%-16s %s\n", form.name.c_str(), form.meaning.c_str());
  }
  return EXIT_SUCCESS;
}

int proveAll(const std::vector<std::string>& names) {
  constexpr int kMostTold = 20;  // of each form's deviations
  bool isSound = true;
  for (const std::string& name : names) {
    std::uint64_t deviations = 0;
    const std::uint64_t count = prove(formNamed(name), [&](const Deviation& deviation) {
      if (++deviations <= kMostTold) std::printf("%s\n", textOf(deviation).c_str());
    });
    const std::string outcome =
        deviations == 0 ? "no deviation" : std::to_string(deviations) + " deviate";
    std::printf("%-16s %9llu dialogues, %s\n", name.c_str(), static_cast<unsigned long long>(count),
                outcome.c_str());
    isSound = isSound && deviations == 0;
  }
  return isSound ? EXIT_SUCCESS : EXIT_FAILURE;
}

int showOne(const Form& form, const Script& script) {
  Replay replay(script);
  const Dialogue dialogue = tell(form, replay);
  for (const std::string& event : dialogue.events) std::printf("%s\n", event.c_str());
  const std::string found = deviationOf(form, dialogue);
  std::printf("\nscript %s\n%s", textOf(script).c_str(),
              found.empty() ? "no deviation\n" : found.c_str());
  return found.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

Script scriptOfNumber(const Form& form, std::uint64_t number) {
  Tree tree;
  while (tree.next()) {
    tell(form, tree);
    if (tree.number() == number) return tree.script();
  }
  throw std::invalid_argument("the form has " + std::to_string(tree.number()) + " dialogues");
}

bool isNumberOrScript(const std::string& text) {
  return text.find_first_not_of("0123456789.") == std::string::npos;
}

int run(const std::vector<std::string>& arguments) {
  if (arguments.size() == 1 && arguments[0] == "forms") return listForms();
  if (arguments.size() == 2 && isNumberOrScript(arguments[1])) {
    const Form& form = formNamed(arguments[0]);
    const bool isScript = arguments[1].find('.') != std::string::npos;
    return showOne(
        form, isScript ? scriptOf(arguments[1]) : scriptOfNumber(form, std::stoull(arguments[1])));
  }
  if (!arguments.empty()) return proveAll(arguments);
  std::vector<std::string> all;
  for (const Form& form : forms()) all.push_back(form.name);
  return proveAll(all);
}

}  // namespace
}  // namespace kelvane::dialogues

int main(int count, char** values) {
  try {
    return kelvane::dialogues::run({values + 1, values + count});
  } catch (const std::exception& caught) {
    std::fprintf(stderr, "%s\n%s", caught.what(), kelvane::dialogues::kUsage);
    return 2;
  }
}
