#include "operations/RecordingWindow.h"

#include <gtest/gtest.h>
#include <memory>

using namespace operations_test;
using qv::platform::PostMessageW;

TEST(WindowMessages, PostsReachTheNamedReceiverInOrder) {
    RecordingWindow first, second;
    ASSERT_NE(first.handle, nullptr);
    EXPECT_NE(first.handle, second.handle);
    EXPECT_TRUE(PostMessageW(first.handle, 7681, 1, 0));
    EXPECT_TRUE(PostMessageW(second.handle, 7682, 99, -1));
    EXPECT_TRUE(PostMessageW(first.handle, 7682, ~0ull, 5));
    EXPECT_EQ(first.Messages(), (std::vector<WindowMessage>{{first.handle, 7681, 1, 0},
                                                            {first.handle, 7682, ~0ull, 5}}));
    EXPECT_EQ(second.Messages(), (std::vector<WindowMessage>{{second.handle, 7682, 99, -1}}));
}

// A handle that names no receiver, or no longer does, takes nothing; handles are not reused.
TEST(WindowMessages, AGoneReceiverTakesNothing) {
    auto window = std::make_unique<RecordingWindow>();
    HWND const gone = window->handle;
    window.reset();
    EXPECT_FALSE(PostMessageW(gone, 7681, 1, 0));
    EXPECT_FALSE(PostMessageW(nullptr, 7681, 1, 0));
    EXPECT_FALSE(qv::platform::UnregisterWindowReceiver(gone));
    EXPECT_FALSE(qv::platform::UnregisterWindowReceiver(nullptr));
    EXPECT_EQ(qv::platform::RegisterWindowReceiver(nullptr), nullptr);
    RecordingWindow next;
    EXPECT_NE(next.handle, gone);
}
