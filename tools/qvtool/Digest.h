// qvtool's small services: SHA-1 digests of files and new identifiers.
#pragma once

#include <string>
#include <vector>

namespace qvtool {

/// Prints "digest  file" for each file, as sha1sum does.
int Sha1(std::vector<std::string> const& files);
/// Prints a new identifier in its 36-character text form.
int NewGuid();

} // namespace qvtool
