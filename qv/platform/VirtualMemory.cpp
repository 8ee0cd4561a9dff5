#include <cerrno>
#include <iterator>
#include <map>
#include <mutex>
#include <qv/platform/VirtualMemory.h>
#include <sys/mman.h>
#include <unistd.h>

namespace qv::platform {

namespace {

// munmap needs the size that VirtualFree does not get, and a decommit must stay inside a region
// of ours (madvise would as readily drop pages of the heap): each region's size by its base, in
// address order so that the region holding an address is found.
std::mutex regionsMutex;
std::map<std::uintptr_t, std::size_t> regions;

std::size_t PageSize() {
    static std::size_t const size = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    return size;
}

// Regions this large ask for transparent huge pages: a first touch then faults in 2 MiB at
// once instead of 512 single pages, which is most of what filling a fresh buffer costs.
constexpr std::size_t kHugePage = std::size_t{2} << 20;

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

// MADV_DONTNEED drops the pages at once, so resident memory falls before the call returns;
// a private anonymous page that is touched again comes back zero-filled, as a recommitted page
// on Windows does. (MADV_FREE would keep the pages counted until the system runs short.)
bool Decommit(void* address, std::size_t size) {
    auto const first = reinterpret_cast<std::uintptr_t>(address);
    std::size_t const page = PageSize();
    if (size == 0 || first > UINTPTR_MAX - size) {
        errno = EINVAL;
        return false;
    }
    std::uintptr_t const begin = first / page * page;
    std::uintptr_t const end = first + size;
    {
        // The region is looked up but not held: a caller that decommits while another thread
        // releases the same region has lost track of it already.
        std::lock_guard lock(regionsMutex);
        auto const above = regions.upper_bound(begin);
        bool const inside =
            above != regions.begin() && end - std::prev(above)->first <= std::prev(above)->second;
        if (!inside) {
            errno = EINVAL;
            return false;
        }
    }
    std::size_t const length = (end - begin + page - 1) / page * page;
    return ::madvise(reinterpret_cast<void*>(begin), length, MADV_DONTNEED) == 0;
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
    if (rounded >= kHugePage)
        ::madvise(base, rounded, MADV_HUGEPAGE); // a hint: refused where the kernel lacks it
    std::lock_guard lock(regionsMutex);
    regions.emplace(reinterpret_cast<std::uintptr_t>(base), rounded);
    return base;
}

bool VirtualFree(void* address, std::size_t size, std::uint32_t freeType) {
    if (freeType == MEM_DECOMMIT)
        return Decommit(address, size);
    if (size != 0 || freeType != MEM_RELEASE) {
        errno = EINVAL;
        return false;
    }
    std::size_t length = 0;
    {
        std::lock_guard lock(regionsMutex);
        auto const it = regions.find(reinterpret_cast<std::uintptr_t>(address));
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
