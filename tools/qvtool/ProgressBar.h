// A progress bar on standard error, for walks over large files. It draws only when standard
// error is a terminal and the file is larger than a few megabytes, so scripts and small files
// see no trace of it.
#pragma once

#include <qv/qvcore.h>

namespace qvtool {

/// A callback for BArchiveInspector that draws the bar, or an empty one where none is wanted.
BArchiveInspector::Progress ProgressBarFor(long long fileSize);

} // namespace qvtool
