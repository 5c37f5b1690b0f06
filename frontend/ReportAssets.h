#pragma once

#include <string_view>

namespace zel {

// A part of the report page that is the same for all reports, and its hash for the page's policy.
struct TReportAsset {
  std::string_view hash;  // "sha256-..."
  std::string_view text;
};

// frontend/report/report.css and report.js as they were at build time.
extern const TReportAsset kReportStyle;
extern const TReportAsset kReportScript;

}  // namespace zel
