// The operation suites' recording dispatcher for the suites that check what the library posts:
// it answers nothing, and Take hands over what was recorded since the last Take. Register one
// with MessageCounter::Installed for a scope.
#pragma once

#include "operations/RecordingDispatcher.h"

#include <cstddef>
#include <utility>
#include <vector>

class MessageCounter : public operations_test::RecordingDispatcher {
public:
    using Message = operations_test::Message;
    MessageCounter() : RecordingDispatcher(false) { answer = false; }

    // The messages so far, and none from now on; for the test's own thread.
    std::vector<Message> Take() {
        std::vector<Message> const all = Messages();
        std::size_t const from = std::exchange(m_taken, all.size());
        return {all.begin() + static_cast<std::ptrdiff_t>(from), all.end()};
    }

    // Registers a new counter for the life of the guard.
    struct Installed {
        SP<MessageCounter> counter{new MessageCounter};
        Installed() { BDispatcher::RegisterDispatcher(counter); }
        ~Installed() { BDispatcher::RegisterDispatcher(nullptr); }
        Installed(Installed const&) = delete;
        Installed& operator=(Installed const&) = delete;
        MessageCounter* operator->() const { return counter.get(); }
    };

private:
    std::size_t m_taken = 0;
};
