#include "operations/RecordingDispatcher.h"

#include <gtest/gtest.h>
#include <memory>

using namespace operations_test;
using qv::platform::PostMessageW;

// Delivery to a live receiver is what the operations' report routes check; here: a handle whose
// receiver has gone takes nothing, and is not given out again.
TEST(WindowMessages, AGoneReceiversHandleTakesNothing) {
    auto first = std::make_unique<RecordingWindow>();
    HWND const gone = first->handle;
    EXPECT_TRUE(PostMessageW(gone, 7681, 1, 0));
    first.reset();
    EXPECT_FALSE(PostMessageW(gone, 7681, 1, 0));
    EXPECT_FALSE(PostMessageW(nullptr, 7681, 1, 0));
    EXPECT_FALSE(qv::platform::UnregisterWindowReceiver(gone));
    EXPECT_NE(RecordingWindow().handle, gone);
}
