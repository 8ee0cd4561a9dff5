#include <cstdio>
#include <qv/platform/ProcessMemory.h>
#include <unistd.h>

namespace qv::platform {

std::uint64_t ProcessResidentBytes() {
    // statm gives sizes in pages: total program size first, resident set second.
    std::FILE* statm = std::fopen("/proc/self/statm", "r");
    if (!statm)
        return 0;
    unsigned long long total = 0, resident = 0;
    int const read = std::fscanf(statm, "%llu %llu", &total, &resident);
    std::fclose(statm);
    if (read != 2)
        return 0;
    return resident * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

} // namespace qv::platform
