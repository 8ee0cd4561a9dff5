#include <cstring>
#include <gtest/gtest.h>
#include <qv/core/files/BMemory.h>

TEST(BMemory, BufferOnlyGrowsAndKeepsItsContents) {
    BMemory memory;
    EXPECT_EQ(memory.Allocate(0), nullptr); // takes no lock: nothing to release
    auto* first = static_cast<char*>(memory.Allocate(100));
    ASSERT_NE(first, nullptr);
    std::memcpy(first, "kept", 5);
    memory.Release();
    EXPECT_EQ(memory.Allocate(50), first);
    EXPECT_EQ(memory.Size(), 100u);
    EXPECT_STREQ(first, "kept");
    memory.Release();
    // Memory the system refuses leaves no buffer, and the next request starts afresh.
    EXPECT_EQ(memory.Allocate(~0ull), nullptr);
    EXPECT_EQ(memory.Size(), 0u);
    memory.Release();
    EXPECT_NE(memory.Allocate(1 << 20), nullptr);
    EXPECT_EQ(memory.Size(), 1u << 20);
    memory.Release();
}

TEST(BMemory, DuplicateCopiesAndTheOwnerMayNest) {
    BMemory memory;
    char const source[] = "measurement";
    auto* copy = static_cast<char*>(memory.Duplicate(source, sizeof source));
    ASSERT_NE(copy, nullptr);
    EXPECT_STREQ(copy, "measurement");
    // The same thread takes the lock again; each Allocate has its Release.
    EXPECT_EQ(memory.Duplicate(nullptr, 4), copy);
    EXPECT_STREQ(copy, "measurement");
    memory.Release();
    memory.Release();
    memory.Release(); // one too many: ignored
    EXPECT_EQ(memory.Duplicate(source, 0), nullptr);
}
