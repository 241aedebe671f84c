#ifndef SPOOLD_REPORT_H
#define SPOOLD_REPORT_H

#include <string>

#include "examine.h"

namespace spoold {

/// The text of a report on the file `name`.
std::string ReportText(const std::string& name, const Findings& findings);

/// Writes `text` to `growing` and renames that to `path` once it is on the disk, so that a report
/// is whole from the moment it can be seen. Throws quor::Exception.
void WriteReport(const std::string& growing, const std::string& path, const std::string& text);

}  // namespace spoold

#endif
