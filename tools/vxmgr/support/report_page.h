// A report: one page of HTML that needs nothing beside itself, from documents of the commands.
#pragma once

#include <string>

#include "vxmgr/support/report_documents.h"

namespace vxmgr {

struct ReportAbout {
    std::string host;
    std::string time;  // UTC, ISO 8601
    std::string tool;
    std::string library;
    std::string sampled;  // "5 times, every 2 s"; empty: not
};

std::string ReportPage(const ReportAbout& about, const ReportDocuments& documents);

}  // namespace vxmgr
