/// \file
/// NArchive::Tupel: an entry of the object archive's list of objects to write.
#pragma once

#include <qv/core/BSmartObj.h>

namespace NArchive {

/// A plain value, used by the archive alone.
struct Tupel {
    /// The object to write; the entry holds a reference.
    SP<BSmartObj> m_object;
    /// The name it was inserted under, empty for an object reached by reference.
    BString m_name;
    /// Whether its record is written.
    bool m_written = false;
};

} // namespace NArchive
