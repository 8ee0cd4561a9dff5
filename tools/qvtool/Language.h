// qvtool on language files: what they hold, and the import, export and merge of translators.
#pragma once

#include "Report.h"

#include <vector>

namespace qvtool::language {

json Info(std::string const& path);
json Dump(std::string const& path);
json Check(std::string const& path);

/// Imports the files into one map and prints each import's report; 0 when every file
/// imported without a conflict.
int Import(std::vector<std::string> const& files, bool replace);
/// Imports the files and writes the joined map to \p target.
int Export(std::string const& target, std::vector<std::string> const& files);
/// Joins new reference files with an old translation into a target directory.
int Merge(std::string const& reference, std::string const& translation, std::string const& target,
          std::string const& pattern);

} // namespace qvtool::language
