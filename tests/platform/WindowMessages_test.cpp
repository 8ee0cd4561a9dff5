#include "operations/RecordingDispatcher.h"

#include <gtest/gtest.h>
#include <memory>

using namespace operations_test;
using qv::platform::PostMessageW;

// Posts reach the named receiver in order; a handle whose receiver has gone takes nothing,
// and is not given out again.
TEST(WindowMessages, PostsReachOnlyALiveReceiver) {
    auto first = std::make_unique<RecordingWindow>();
    RecordingWindow second;
    HWND const gone = first->handle;
    EXPECT_TRUE(PostMessageW(gone, 7681, 1, 0));
    EXPECT_TRUE(PostMessageW(second.handle, 7682, 99, 0));
    EXPECT_TRUE(PostMessageW(gone, 7682, ~0ull, 0));
    EXPECT_EQ(first->Messages(),
              (std::vector<Message>{{true, 7681, 1, 0}, {true, 7682, ~0ull, 0}}));
    EXPECT_EQ(second.Messages(), (std::vector<Message>{{true, 7682, 99, 0}}));

    first.reset();
    EXPECT_FALSE(PostMessageW(gone, 7681, 1, 0));
    EXPECT_FALSE(PostMessageW(nullptr, 7681, 1, 0));
    EXPECT_FALSE(qv::platform::UnregisterWindowReceiver(gone));
    EXPECT_EQ(qv::platform::RegisterWindowReceiver(nullptr), nullptr);
    EXPECT_NE(RecordingWindow().handle, gone);
}
