// The report: one page that stands for itself, without a script and with nothing fetched.
#pragma once

#include <string>

#include "console/report/ReportMatter.h"
#include "console/report/redaction/Redaction.h"

namespace kelvane::console {

// What a page that is a report has at its beginning.
inline constexpr char kReportMark[] =
    "<meta name=\"generator\" content=\"kelvane-console report\"/>";

struct ReportPage {
  std::string text;
  bool isRedacted = false;
  Redaction redaction;  // with what it has replaced
};

ReportPage reportPage(const ReportMatter& matter, bool isRedacted);

// Whether the file begins as a report does.
bool isReport(const std::string& path);

}  // namespace kelvane::console
