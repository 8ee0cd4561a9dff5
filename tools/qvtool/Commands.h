// The subcommands of qvtool. Each returns its exit status or throws Failure.
#pragma once

#include "FileKind.h"
#include "Report.h"

#include <string>
#include <vector>

namespace qvtool {

/// What qvtool can say about one kind of file.
struct KindHandler {
    json (*info)(std::string const& path);
    json (*dump)(std::string const& path);
    json (*check)(std::string const& path);
};

/// The handler of a kind, or null for a kind qvtool does not read.
KindHandler const* HandlerOf(FileKind kind);

int Info(std::string const& path, bool asJson);
int Dump(std::string const& path, bool asJson);
int Check(std::string const& path, bool asJson);

} // namespace qvtool
