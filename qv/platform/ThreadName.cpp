#include <cstdio>
#include <cstring>
#include <pthread.h>
#include <qv/platform/ThreadName.h>
#include <unistd.h>

namespace qv::platform {

bool NameThread(char const* name, unsigned long threadId) noexcept {
    if (!name)
        return false;
    char shortName[16] = {};
    std::strncpy(shortName, name, sizeof shortName - 1);
    threadId &= 0xFFFFFFFFul;
    if (threadId == 0 || threadId == 0xFFFFFFFFul ||
        threadId == static_cast<unsigned long>(gettid()))
        return pthread_setname_np(pthread_self(), shortName) == 0;
    // Another thread of this process: its name is a file of the task.
    char path[64];
    std::snprintf(path, sizeof path, "/proc/self/task/%lu/comm", threadId);
    FILE* f = std::fopen(path, "w");
    if (!f)
        return false;
    bool ok = std::fputs(shortName, f) >= 0;
    return std::fclose(f) == 0 && ok;
}

} // namespace qv::platform
