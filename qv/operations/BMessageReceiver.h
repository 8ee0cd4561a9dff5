// Something that a dispatcher delivers messages to once it has subscribed there. The library
// declares the interface for the application's dispatchers and never calls it itself.
#pragma once

#include <qv/core/Export.h>
class QV_EXPORT BMessageReceiver {
public:
    BMessageReceiver() = default;
    BMessageReceiver(BMessageReceiver const&) = default;
    BMessageReceiver(BMessageReceiver&&) = default;
    BMessageReceiver& operator=(BMessageReceiver const&) = default;
    BMessageReceiver& operator=(BMessageReceiver&&) = default;

    // A message reaches the receiver: its number and its two parameters.
    virtual bool OnMessage(unsigned int message, unsigned long long param1,
                           unsigned long long param2) = 0;

protected:
    // Receivers are owned by whoever subscribes them, never deleted through this interface.
    ~BMessageReceiver() = default;
};
