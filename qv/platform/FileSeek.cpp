#include <qv/platform/FileSeek.h>
#include <sys/types.h>

namespace qv::platform {

int _fseeki64(std::FILE* stream, long long offset, int origin) {
    return fseeko(stream, static_cast<off_t>(offset), origin) == 0 ? 0 : -1;
}

long long _ftelli64(std::FILE* stream) {
    return static_cast<long long>(ftello(stream));
}

} // namespace qv::platform
