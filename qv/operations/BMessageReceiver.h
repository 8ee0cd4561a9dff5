/// \file
/// BMessageReceiver: something that a dispatcher delivers messages to.
#pragma once

#include <qv/core/Export.h>
/// A receiver subscribes at the application's dispatcher (BDispatcher::Subscribe). The library
/// declares the interface for the application's dispatchers and never calls it itself.
class QV_EXPORT BMessageReceiver {
public:
    /// @name Construction, copy and move, all trivial.
    ///@{
    BMessageReceiver() = default;
    BMessageReceiver(BMessageReceiver const&) = default;
    BMessageReceiver(BMessageReceiver&&) = default;
    BMessageReceiver& operator=(BMessageReceiver const&) = default;
    BMessageReceiver& operator=(BMessageReceiver&&) = default;
    ///@}

    /// A message reaches the receiver: its number and its two parameters. What the answer
    /// means is agreed between the dispatcher and its receivers.
    virtual bool OnMessage(unsigned int message, unsigned long long param1,
                           unsigned long long param2) = 0;

protected:
    /// Receivers are owned by whoever subscribes them, never deleted through this interface.
    ~BMessageReceiver() = default;
};
