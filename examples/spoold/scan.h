#ifndef SPOOLD_SCAN_H
#define SPOOLD_SCAN_H

#include <string>
#include <vector>

namespace spoold {

/// The names in `folder`, sorted, without those that begin with a dot.
/// Throws quor::Exception when the folder cannot be read.
std::vector<std::string> ListNames(const std::string& folder);

}  // namespace spoold

#endif
