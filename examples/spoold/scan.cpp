#include "scan.h"

#include <quor/exception.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "text.h"

namespace spoold {

std::vector<std::string> ListNames(const std::string& folder) {
    using Iterator = std::filesystem::directory_iterator;
    std::vector<std::string> names;
    std::error_code error;
    for (Iterator entry(folder, error); !error && entry != Iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (name.front() != '.') {
            names.push_back(name);
        }
    }
    if (error) {
        throw quor::Exception("Cannot list " + Quoted(folder) + ": " + error.message(), true);
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace spoold
