// qvtool on object archives: the header, the record prefixes, node trees decoded, damage.
#pragma once

#include "Report.h"

namespace qvtool::object_archive {

json Info(std::string const& path);
json Dump(std::string const& path);
/// {"sound": bool, ...}; for a damaged file the first bad record and why.
json Check(std::string const& path);

/// A node and its branch, as a document: text, state, object class, attributes, children.
json NodeTree(BNode const& node);

} // namespace qvtool::object_archive
