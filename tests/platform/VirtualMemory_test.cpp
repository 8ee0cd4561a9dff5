#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <qv/platform/VirtualMemory.h>

using namespace qv::platform;

TEST(VirtualMemory, CommittedPagesAreZeroedWritableAndReleasedWhole) {
    SYSTEM_INFO info{};
    GetSystemInfo(&info);
    ASSERT_GT(info.dwPageSize, 0u);
    auto* p = static_cast<unsigned char*>(
        VirtualAlloc(nullptr, info.dwPageSize + 1, MEM_COMMIT | MEM_TOP_DOWN, PAGE_READWRITE));
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % info.dwPageSize, 0u);
    // Rounded up to whole pages: the second page is there.
    EXPECT_EQ(p[2 * info.dwPageSize - 1], 0);
    std::memset(p, 0xAB, 2 * info.dwPageSize);
    EXPECT_FALSE(VirtualFree(p, info.dwPageSize, MEM_RELEASE));
    EXPECT_FALSE(VirtualFree(p + info.dwPageSize, 0, MEM_RELEASE));
    EXPECT_TRUE(VirtualFree(p, 0, MEM_RELEASE));
    EXPECT_FALSE(VirtualFree(p, 0, MEM_RELEASE));
}

TEST(VirtualMemory, RefusesWhatItDoesNotOffer) {
    int local = 0;
    EXPECT_EQ(VirtualAlloc(nullptr, 0, MEM_COMMIT, PAGE_READWRITE), nullptr);
    EXPECT_EQ(VirtualAlloc(&local, 4096, MEM_COMMIT, PAGE_READWRITE), nullptr);
    EXPECT_EQ(VirtualAlloc(nullptr, ~std::size_t{0}, MEM_COMMIT, PAGE_READWRITE), nullptr);
}

TEST(VirtualMemory, DecommitDropsPagesInsideARegionOnly) {
    SYSTEM_INFO info{};
    GetSystemInfo(&info);
    std::size_t const page = info.dwPageSize;
    auto* p =
        static_cast<unsigned char*>(VirtualAlloc(nullptr, 4 * page, MEM_COMMIT, PAGE_READWRITE));
    ASSERT_NE(p, nullptr);
    std::memset(p, 0xCD, 4 * page);
    unsigned char outside[16] = {};
    struct Row {
        char const* name;
        void* address;
        std::size_t size;
        bool done;
    } const rows[] = {
        {"size 0", p, 0, false},
        {"past the region's end", p + 3 * page, page + 1, false},
        {"memory of no region", outside, sizeof outside, false},
        {"the pages that hold a range inside", p + page + 10, page, true},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(VirtualFree(row.address, row.size, MEM_DECOMMIT), row.done);
    }
    // The second and third pages read as zeros again; the others keep their bytes.
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(p[i * page + 5], (i == 1 || i == 2) ? 0 : 0xCD) << "page " << i;
    EXPECT_TRUE(VirtualFree(p, 0, MEM_RELEASE));
}
