// How the report looks.
#pragma once

namespace kelvane::console {

// The page's policy lets this style in, and nothing else, by its digest: a test tells the right one
// when the style is changed.
extern const char* const kReportStyle;
inline constexpr char kReportStyleDigest[] = "sha256-NjCTRh15Xpvg4iqE7yn33qAO90sMJ7JDys1YI+xUNi8=";

}  // namespace kelvane::console
