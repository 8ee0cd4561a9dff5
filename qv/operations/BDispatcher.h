// The dispatcher: how the library tells the application what happens. The application
// implements it around its message loop and registers one object; the library hands it
// numbered messages (MessageNumbers.h) with two 64-bit parameters, by Send (deliver and
// return when handled) or by Post (enqueue and return at once). Its thread is "the"
// dispatcher thread, on which operations report synchronously.
//
// With no dispatcher registered the library keeps working: messages vanish and no thread is
// the dispatcher thread. The slot has no lock: register before starting threads that report.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/SP.h>

class BMessageReceiver;

class QV_EXPORT BDispatcher : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BDispatcher)

    BDispatcher() = default;
    BDispatcher(BDispatcher const& other) : BSmartObj(other) {}
    BDispatcher(BDispatcher&& other) : BSmartObj(other) {}
    BDispatcher& operator=(BDispatcher const&) { return *this; }
    BDispatcher& operator=(BDispatcher&&) { return *this; }

    // The virtual operations in the order of their slots.
    virtual bool Send(unsigned int message, unsigned long long param1,
                      unsigned long long param2) = 0;
    // Called from any thread, also with locks held: it must not wait.
    virtual bool Post(unsigned int message, unsigned long long param1,
                      unsigned long long param2) = 0;
    // The dispatcher thread's id as GetCurrentThreadId gives it; 0xFFFFFFFF for none.
    virtual unsigned long ThreadId() = 0;
    virtual bool Subscribe(BMessageReceiver* receiver) = 0;
    virtual bool Unsubscribe(BMessageReceiver* receiver) = 0;

    // A new reference to the registered dispatcher, or null.
    static SP<BDispatcher> Instance();
    // Replaces the registered dispatcher; null returns to having none. The library keeps one
    // reference until it is unloaded or the dispatcher is replaced.
    static void RegisterDispatcher(SP<BDispatcher> dispatcher);
    // The dispatcher's answer, or false without one.
    static bool DispatcherPost(unsigned int message, unsigned long long param1,
                               unsigned long long param2);
    static bool DispatcherSend(unsigned int message, unsigned long long param1,
                               unsigned long long param2);
    // Whether a dispatcher is registered: senders with work to do before a send (a node
    // finding its root) skip it when the message would vanish anyway.
    static bool IsRegistered();
    // ThreadId of the dispatcher, or 0xFFFFFFFF without one.
    static unsigned long DispatcherThreadId();
    static bool CurrentThreadIsDispatcherThread();
};
