// qvtool on the other formats: stream archives, binary and ini profiles, registry store files
// and profiler logs, with the profile commands.
#pragma once

#include "Report.h"

namespace qvtool {

namespace stream_archive {
json Info(std::string const& path);
json Dump(std::string const& path);
json Check(std::string const& path);
} // namespace stream_archive

namespace profile {
json Info(std::string const& path);
json Dump(std::string const& path);
json Check(std::string const& path);
/// The value of a key, a section's keys or every section, through OpenProfile.
int Get(std::string const& path, std::string const& section, std::string const& key);
int List(std::string const& path, std::string const& section);
/// Writes a text value into a binary or ini profile.
int Set(std::string const& path, std::string const& section, std::string const& key,
        std::string const& value);
} // namespace profile

namespace registry_file {
json Info(std::string const& path);
json Dump(std::string const& path);
json Check(std::string const& path);
} // namespace registry_file

namespace profiler_log {
json Info(std::string const& path);
json Dump(std::string const& path);
json Check(std::string const& path);
} // namespace profiler_log

} // namespace qvtool
