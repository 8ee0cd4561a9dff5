// The lines of unit_tables_probe.cpp answered by qvcore: our ToUpperW/ToLowerW stand in all
// four mapping columns (they follow the runtime in a real locale). Build against a dev build:
//   g++ -std=c++20 -I../.. unit_tables_ours.cpp -o /tmp/unit_tables_ours -L../../build/dev -lqvcore
//   LD_LIBRARY_PATH=../../build/dev /tmp/unit_tables_ours > ours_units.txt
#include "qv/platform/TextServices.h"
#include "qv/platform/WideNumbers.h"

#include <cstdio>

using namespace qv::platform;

int main() {
    for (unsigned u = 0; u < 65536; ++u) {
        char16_t c = static_cast<char16_t>(u);
        char16_t num[3] = {c, u'1', 0};
        std::printf("%04X %04X %04X %04X %04X %04X %04X %d%d%d%d %d\n", u, (unsigned)c, (unsigned)c,
                    (unsigned)ToUpperW(c), (unsigned)ToLowerW(c), (unsigned)ToUpperW(c),
                    (unsigned)ToLowerW(c), IsAlphaW(c), IsDigitW(c), IsPrintW(c), IsSpaceW(c),
                    _wtoi(num));
    }
}
