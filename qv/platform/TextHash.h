// Hashes that agree with the text comparisons of TextServices.h, for hash tables that stand
// beside ordered or compared keys.
#pragma once

#include <cstdint>

namespace qv::platform {

// Texts that lstrcmpW (lstrcmpiW) calls equal hash alike: equal texts have the same canonical
// decomposition (after case folding for the case-blind form), and that form is what is hashed.
// Texts that hash alike may still differ, so a table keyed this way compares with the function
// itself. A null pointer hashes as "".
std::uint64_t HashForCmpW(char16_t const* s);
std::uint64_t HashForCmpIW(char16_t const* s);

} // namespace qv::platform
