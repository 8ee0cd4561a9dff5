// A dispatcher for suites that check what the library posts: it records every message, from
// any thread, and answers nothing. Register it with MessageCounter::Install and the fixture's
// destructor takes it out again.
#pragma once

#include <mutex>
#include <qv/operations/BDispatcher.h>
#include <utility>
#include <vector>

class MessageCounter : public BDispatcher {
public:
    struct Message {
        unsigned int number;
        unsigned long long param1, param2;
        bool posted;
    };

    bool Send(unsigned int m, unsigned long long p1, unsigned long long p2) override {
        return Record({m, p1, p2, false});
    }
    bool Post(unsigned int m, unsigned long long p1, unsigned long long p2) override {
        return Record({m, p1, p2, true});
    }
    unsigned long ThreadId() override { return 0xFFFFFFFF; }
    bool Subscribe(BMessageReceiver*) override { return false; }
    bool Unsubscribe(BMessageReceiver*) override { return false; }

    // The messages so far, and none from now on.
    std::vector<Message> Take() {
        std::lock_guard lock(m_mutex);
        return std::exchange(m_messages, {});
    }

    // Registers a new counter for the life of the returned guard.
    struct Installed {
        SP<MessageCounter> counter{new MessageCounter};
        Installed() { BDispatcher::RegisterDispatcher(counter); }
        ~Installed() { BDispatcher::RegisterDispatcher(nullptr); }
        Installed(Installed const&) = delete;
        Installed& operator=(Installed const&) = delete;
        MessageCounter* operator->() const { return counter.get(); }
    };

private:
    bool Record(Message message) {
        std::lock_guard lock(m_mutex);
        m_messages.push_back(message);
        return false;
    }

    std::mutex m_mutex;
    std::vector<Message> m_messages;
};
