// How the report looks.
#pragma once

namespace kelvane::console {

// The page's policy lets this style in, and nothing else, by its digest: a test tells the right one
// when the style is changed.
extern const char* const kReportStyle;
inline constexpr char kReportStyleDigest[] = "sha256-wgzDpa8c79br3Y8miJS5VZlXt8124JS+8FHgWYKg3Fk=";

}  // namespace kelvane::console
