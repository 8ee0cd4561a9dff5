// kernel32's page services over mmap, munmap and sysconf: whole, page-aligned, zero-filled
// regions outside the general heap, for the memory manager's frames and BMemory.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qv::platform {

constexpr std::uint32_t MEM_COMMIT = 0x1000;
constexpr std::uint32_t MEM_RESERVE = 0x2000;
constexpr std::uint32_t MEM_DECOMMIT = 0x4000;
constexpr std::uint32_t MEM_RELEASE = 0x8000;
constexpr std::uint32_t MEM_TOP_DOWN = 0x100000;

constexpr std::uint32_t PAGE_NOACCESS = 0x01;
constexpr std::uint32_t PAGE_READONLY = 0x02;
constexpr std::uint32_t PAGE_READWRITE = 0x04;

struct SYSTEM_INFO {
    std::uint32_t dwPageSize;
    std::uint32_t dwAllocationGranularity;
    void* lpMinimumApplicationAddress;
    void* lpMaximumApplicationAddress;
    std::uint32_t dwNumberOfProcessors;
};

void GetSystemInfo(SYSTEM_INFO* info);

// A new region of size bytes, rounded up to whole pages, at an address of the system's choice
// (address must be null; MEM_TOP_DOWN is a hint POSIX does not take). Reserving and committing
// are one step here: the system commits pages when they are first touched. Null (errno set) for
// a size of 0, another address, other flags or protections, or when the system has no memory.
void* VirtualAlloc(void* address, std::size_t size, std::uint32_t allocationType,
                   std::uint32_t protect);
// MEM_RELEASE gives back a whole region: address as VirtualAlloc returned it, size 0.
// MEM_DECOMMIT gives the pages that hold [address, address + size) back to the system's
// accounting (resident memory drops) while the region stays reserved; the range must lie inside
// one region and size must not be 0. A decommitted page reads as zeros when it is touched again:
// committing needs no call of its own here. False (errno set) for anything else.
bool VirtualFree(void* address, std::size_t size, std::uint32_t freeType);

} // namespace qv::platform
