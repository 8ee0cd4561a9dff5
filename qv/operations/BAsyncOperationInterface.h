/// \file
/// An operation that runs on a worker thread of the application's. Its state (the stop flag,
/// the last error, the message sink and the status texts not yet fetched) lives in the object
/// behind its recursive lock, and it reports by posts, so the worker never waits for the
/// thread that watches it:
///
/// - with a message sink (a window, see qv/platform/WindowMessages.h): MSG_SINK_STATUS with
///   the status id and MSG_SINK_PROGRESS with the percent (at most 99) are posted to it;
/// - without one: MSG_ASYNC_STATUS and MSG_ASYNC_PROGRESS go to the dispatcher, sent on the
///   dispatcher thread and posted on any other, with this object as first parameter;
/// - errors always go to the dispatcher as MSG_ASYNC_ERROR; the receiver calls GetError.
///
/// Status texts travel through the object, never through a message: the receiver gets an id
/// and calls FetchStatusMessage. An object serves one run: nothing clears the stop flag. Its
/// owner must have joined the worker, and handled every queued message that carries the
/// object, before the object dies. Design notes: docs/operations.md.
#pragma once

#include <qv/core/containers/BMap.h>
#include <qv/operations/BOperationInterface.h>
#include <qv/operations/BSyncableSmartObj.h>
#include <qv/platform/WindowsTypes.h>

class QV_EXPORT BAsyncOperationInterface : public BSyncableSmartObj, public BOperationInterface {
public:
    QV_DECLARE_CLASSNAME(BAsyncOperationInterface)

    /// Not stopping, error code 0, no sink, no status texts.
    BAsyncOperationInterface();
    /// No copies: the state belongs to one run, and is read only under the object's lock.
    BAsyncOperationInterface(BAsyncOperationInterface const&) = delete;
    BAsyncOperationInterface& operator=(BAsyncOperationInterface const&) = delete;
    ~BAsyncOperationInterface() override;

    // The virtual operations of the operation contract.
    /// The stop flag, under the lock. IsStoppingWeak gives the same answer.
    bool IsStopping() override;
    bool IsStoppingWeak() override;
    /// Stores a copy of the text under the next id (the first is 1) and notifies the sink or
    /// the dispatcher with the id; the lock is held across the notification.
    void StatusInfo(WString const& text) override;
    /// Posts the percent to the sink, limited to 99, or hands it unlimited to the dispatcher;
    /// the lock is held across the notification.
    void ProgressInfo(unsigned int percent) override;
    /// SetError, then MSG_ASYNC_ERROR to the dispatcher (never to the sink), the lock free.
    void ErrorInfo(BError const& error) override;
    /// The text stored under \p id, removed unless \p keep; empty when there is none (a text
    /// is fetched once).
    WString FetchStatusMessage(int id, bool keep) override;
    /// Sets the stop flag for good. Any thread may call it.
    void Stop() override;

    // Its own virtual operations in the order of their slots.
    /// @name The last error: GetError gives a copy of what SetError stored; code 0 at first.
    ///@{
    virtual BError GetError();
    virtual void SetError(BError const& error);
    ///@}
    /// @name The window that receives notifications; null returns the object to the
    /// dispatcher.
    ///@{
    virtual void SetMessageSink(HWND sink);
    virtual HWND GetMessageSink();
    ///@}
    /// Does nothing here; derived classes give it a meaning.
    virtual void ActivateBreak(bool flag);
    /// The stop flag; the argument is not used.
    virtual bool BreakLongOperation(bool flag);
    /// Raises BError 25070 ("$ERR_USER_STOPS_FUNCTION") with empty arguments once the
    /// operation is stopping; returns otherwise. The lock is free again when it has raised.
    virtual void TestUserBreak() const;

private:
    bool m_stop = false;
    BError m_error;
    HWND m_message_sink = nullptr;
    BMap<unsigned int, WString> m_status_messages;
    std::uint32_t m_status_id = 0;
};
