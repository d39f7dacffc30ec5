// How the report looks.
#pragma once

namespace kelvane::console {

// The page's policy lets this style in, and nothing else, by its digest: a test tells the right one
// when the style is changed.
extern const char* const kReportStyle;
inline constexpr char kReportStyleDigest[] = "sha256-hxxTeOl6YU4uLvfBLx+8on/wkbRpSZOiD494M5XSiHQ=";

}  // namespace kelvane::console
