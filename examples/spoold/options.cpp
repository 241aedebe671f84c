#include "options.h"

#include <quor/create_time.h>
#include <quor/exception.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "text.h"

namespace spoold {

// Not in the unnamed namespace: the trace could not name them as the place of a throw.
quor::Time ReadMoment(const std::string& text) {
    const quor::Time moment = quor::CreateTime(text);
    std::ostringstream printed;  // begins with the year, four wide
    printed << moment;
    if (printed.str() < "1971" || printed.str() >= "2106") {
        throw quor::Exception("not in the years 1971 to 2105", true);
    }
    return moment;
}

void CheckWritable(const std::string& option, const std::string& file) {
    if (file.empty()) {
        throw quor::Exception("A daemon needs " + option + ", or --foreground", true);
    }
    const std::filesystem::path path(file);
    const std::string folder = path.has_parent_path() ? path.parent_path().string() : ".";
    const bool isThere = access(path.c_str(), F_OK) == 0;
    if (std::filesystem::is_directory(path) ||
        access(isThere ? path.c_str() : folder.c_str(), isThere ? W_OK : W_OK | X_OK) != 0) {
        throw quor::Exception("Cannot write " + Quoted(file) + ", given by " + option, true);
    }
}

void CheckDaemonFiles(const Options& options) {
    CheckWritable("--pid-file", options.m_pidFile);
    CheckWritable("--log", options.m_log);
    if (!options.m_trace.empty() && options.m_trace != "+" && options.m_trace != "-") {
        CheckWritable("--trace", options.m_traceDir.empty()
                                     ? options.m_trace
                                     : options.m_traceDir + "/" + options.m_trace);
    }
}

}  // namespace spoold
