// An entry of the object archive's pending list: an object to write, the name it was inserted
// under (empty for an object reached by reference) and whether its record is written.
#pragma once

#include <qv/core/BSmartObj.h>

namespace NArchive {

struct Tupel {
    SP<BSmartObj> m_object;
    BString m_name;
    bool m_written = false;
};

} // namespace NArchive
