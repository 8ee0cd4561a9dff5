/// \file
/// BDispatcher: how the library tells the application what happens. See docs/locks.md.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/SP.h>

class BMessageReceiver;

/// The application implements the dispatcher around its message loop and registers one
/// object; the library hands it numbered messages (MessageNumbers.h) with two 64-bit
/// parameters, by Send (deliver and return when handled) or by Post (enqueue and return at
/// once). Its thread is "the" dispatcher thread, on which operations report synchronously.
///
/// With no dispatcher registered the library keeps working: messages vanish and no thread is
/// the dispatcher thread. The slot has no lock: register before starting threads that report,
/// and do not replace the dispatcher while they run. The dispatcher itself takes no lock for
/// the library; any locking is the implementation's own.
class QV_EXPORT BDispatcher : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BDispatcher)

    /// @name Construction, copy and move: none of them copies anything of its own.
    ///@{
    BDispatcher() = default;
    BDispatcher(BDispatcher const& other) : BSmartObj(other) {}
    BDispatcher(BDispatcher&& other) : BSmartObj(other) {}
    BDispatcher& operator=(BDispatcher const&) { return *this; }
    BDispatcher& operator=(BDispatcher&&) { return *this; }
    ///@}

    // The virtual operations in the order of their slots.
    /// Delivers a message and returns when it has been handled; the answer is the
    /// implementation's. Called on the dispatcher thread and, by nodes and progress mappings
    /// on a worker, on others too: how such a call behaves is the dispatcher's choice. A
    /// pointer parameter is valid only while Send runs.
    virtual bool Send(unsigned int message, unsigned long long param1,
                      unsigned long long param2) = 0;
    /// Enqueues a message and returns at once; the answer is the implementation's. Called
    /// from any thread, also with locks held: it must not wait.
    virtual bool Post(unsigned int message, unsigned long long param1,
                      unsigned long long param2) = 0;
    /// The dispatcher thread's id as GetCurrentThreadId gives it (32 bits); 0xFFFFFFFF for
    /// none.
    virtual unsigned long ThreadId() = 0;
    /// @name Receivers: for the application's own use; the library never calls these, and
    /// what they answer is the implementation's.
    ///@{
    virtual bool Subscribe(BMessageReceiver* receiver) = 0;
    virtual bool Unsubscribe(BMessageReceiver* receiver) = 0;
    ///@}

    /// A new reference to the registered dispatcher, or null.
    static SP<BDispatcher> Instance();
    /// Replaces the registered dispatcher; null returns to having none. The library keeps one
    /// reference until it is unloaded or the dispatcher is replaced; registering the
    /// registered dispatcher again is harmless.
    static void RegisterDispatcher(SP<BDispatcher> dispatcher);
    /// @name The dispatcher's Post or Send with its answer, or false without a dispatcher.
    ///@{
    static bool DispatcherPost(unsigned int message, unsigned long long param1,
                               unsigned long long param2);
    static bool DispatcherSend(unsigned int message, unsigned long long param1,
                               unsigned long long param2);
    ///@}
    /// Whether a dispatcher is registered: senders with work to do before a send (a node
    /// finding its root) skip it when the message would vanish anyway.
    static bool IsRegistered();
    /// ThreadId of the dispatcher, or 0xFFFFFFFF without one.
    static unsigned long DispatcherThreadId();
    /// True on the dispatcher's thread (compared by the low 32 bits of ThreadId); false on
    /// every thread without a dispatcher.
    static bool CurrentThreadIsDispatcherThread();
};
