#include <cerrno>
#include <mutex>
#include <qv/platform/VirtualMemory.h>
#include <sys/mman.h>
#include <unistd.h>
#include <unordered_map>

namespace qv::platform {

namespace {

// munmap needs the size that VirtualFree does not get: each region's size by its base.
std::mutex regionsMutex;
std::unordered_map<void*, std::size_t> regions;

std::size_t PageSize() {
    static std::size_t const size = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    return size;
}

int Protection(std::uint32_t protect) {
    switch (protect) {
    case PAGE_NOACCESS:
        return PROT_NONE;
    case PAGE_READONLY:
        return PROT_READ;
    case PAGE_READWRITE:
        return PROT_READ | PROT_WRITE;
    default:
        return -1;
    }
}

} // namespace

void GetSystemInfo(SYSTEM_INFO* info) {
    if (!info)
        return;
    auto const page = static_cast<std::uint32_t>(PageSize());
    info->dwPageSize = page;
    info->dwAllocationGranularity = page;
    info->lpMinimumApplicationAddress = reinterpret_cast<void*>(std::uintptr_t{page});
    info->lpMaximumApplicationAddress = reinterpret_cast<void*>(std::uintptr_t{0x7FFFFFFEFFFF});
    info->dwNumberOfProcessors = static_cast<std::uint32_t>(::sysconf(_SC_NPROCESSORS_ONLN));
}

void* VirtualAlloc(void* address, std::size_t size, std::uint32_t allocationType,
                   std::uint32_t protect) {
    int const prot = Protection(protect);
    bool const validType = (allocationType & (MEM_COMMIT | MEM_RESERVE)) &&
                           !(allocationType & ~(MEM_COMMIT | MEM_RESERVE | MEM_TOP_DOWN));
    std::size_t const page = PageSize();
    if (address || size == 0 || size > SIZE_MAX - page || prot < 0 || !validType) {
        errno = EINVAL;
        return nullptr;
    }
    std::size_t const rounded = (size + page - 1) / page * page;
    void* base = ::mmap(nullptr, rounded, prot, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED)
        return nullptr;
    std::lock_guard lock(regionsMutex);
    regions.emplace(base, rounded);
    return base;
}

bool VirtualFree(void* address, std::size_t size, std::uint32_t freeType) {
    if (size != 0 || freeType != MEM_RELEASE) {
        errno = EINVAL;
        return false;
    }
    std::size_t length = 0;
    {
        std::lock_guard lock(regionsMutex);
        auto const it = regions.find(address);
        if (it == regions.end()) {
            errno = EINVAL;
            return false;
        }
        length = it->second;
        regions.erase(it);
    }
    return ::munmap(address, length) == 0;
}

} // namespace qv::platform
