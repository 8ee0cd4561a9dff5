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
