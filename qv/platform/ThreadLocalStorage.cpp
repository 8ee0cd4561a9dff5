#include <pthread.h>
#include <qv/platform/ThreadLocalStorage.h>

namespace qv::platform {

static_assert(sizeof(pthread_key_t) <= sizeof(std::uint32_t));

std::uint32_t TlsAlloc() noexcept {
    pthread_key_t key;
    if (pthread_key_create(&key, nullptr) != 0 || key == TLS_OUT_OF_INDEXES)
        return TLS_OUT_OF_INDEXES;
    return key;
}

void* TlsGetValue(std::uint32_t index) noexcept {
    return pthread_getspecific(index);
}

bool TlsSetValue(std::uint32_t index, void* value) noexcept {
    return pthread_setspecific(index, value) == 0;
}

bool TlsFree(std::uint32_t index) noexcept {
    return pthread_key_delete(index) == 0;
}

} // namespace qv::platform
