#include "platform/Regex.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

#include <pcre2.h>

#include "platform/Exception.h"

namespace kelvane::platform {

struct Regex::Compiled {
  struct Free {
    void operator()(pcre2_code* one) const { ::pcre2_code_free(one); }
    void operator()(pcre2_compile_context* one) const { ::pcre2_compile_context_free(one); }
    void operator()(pcre2_match_data* one) const { ::pcre2_match_data_free(one); }
  };
  template <typename Kind>
  using Owned = std::unique_ptr<Kind, Free>;

  explicit Compiled(const std::string& pattern);

  Owned<pcre2_code> code;
  Owned<pcre2_match_data> match;  // room for what a text matches
};

namespace {

PCRE2_SPTR units(const std::string& text) { return reinterpret_cast<PCRE2_SPTR>(text.data()); }

}  // namespace

Regex::Compiled::Compiled(const std::string& pattern) {
  const Owned<pcre2_compile_context> context(::pcre2_compile_context_create(nullptr));
  if (context == nullptr) throw std::bad_alloc();
  ::pcre2_set_newline(context.get(), PCRE2_NEWLINE_ANY);
  int error = 0;
  PCRE2_SIZE at = 0;
  code.reset(::pcre2_compile(units(pattern), pattern.size(), PCRE2_UTF | PCRE2_UCP, &error, &at,
                             context.get()));
  if (error == PCRE2_ERROR_HEAP_FAILED) throw std::bad_alloc();
  if (code == nullptr) throw Exception("not a regular expression: " + pattern);
  match.reset(::pcre2_match_data_create_from_pattern(code.get(), nullptr));
  if (match == nullptr) throw std::bad_alloc();
}

Regex::Regex(const std::string& pattern) : compiled_(std::make_unique<Compiled>(pattern)) {}

Regex::~Regex() = default;

std::optional<std::vector<std::string>> Regex::firstMatch(const std::string& text) const {
  pcre2_match_data* match = compiled_->match.get();
  const int groups =
      ::pcre2_match(compiled_->code.get(), units(text), text.size(), 0, 0, match, nullptr);
  if (groups == PCRE2_ERROR_NOMEMORY) throw std::bad_alloc();
  if (groups <= 0) return std::nullopt;
  const PCRE2_SIZE* bounds = ::pcre2_get_ovector_pointer(match);
  std::vector<std::string> found;
  for (std::size_t i = 0; i < static_cast<std::size_t>(groups); ++i) {
    const PCRE2_SIZE start = bounds[2 * i];
    found.push_back(start == PCRE2_UNSET ? "" : text.substr(start, bounds[2 * i + 1] - start));
  }
  return found;
}

std::int64_t leadingInteger(const std::string& text) {
  return std::strtoll(text.c_str(), nullptr, 10);  // held at the limits by the C library
}

}  // namespace kelvane::platform
