#ifndef SPOOLD_CONFIGURATION_H
#define SPOOLD_CONFIGURATION_H

#include <string>

#include "options.h"

namespace spoold {

/// Fills `options` from a file of lines "key = value"; what it does not name stays. Lines that are
/// blank or begin with # are skipped.
///
/// Throws quor::Exception for the first line that is wrong, with its number, its text and what
/// would be right, or when the file cannot be read.
void ReadConfiguration(const std::string& path, Options& options);

}  // namespace spoold

#endif
