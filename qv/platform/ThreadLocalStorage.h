// Thread-local storage by index, as TlsAlloc and its family give it: each index names one
// pointer-sized slot in every thread, null until the thread sets it. Nothing is freed when a
// thread ends; code that needs a destructor per thread uses C++ thread_local instead.
#pragma once

#include <cstdint>

namespace qv::platform {

constexpr std::uint32_t TLS_OUT_OF_INDEXES = 0xFFFFFFFF;

// A new index, or TLS_OUT_OF_INDEXES when the system has none left.
std::uint32_t TlsAlloc() noexcept;
// The calling thread's value; null for a slot it never set, and for an invalid index.
void* TlsGetValue(std::uint32_t index) noexcept;
// False for an invalid index.
bool TlsSetValue(std::uint32_t index, void* value) noexcept;
bool TlsFree(std::uint32_t index) noexcept;

} // namespace qv::platform
