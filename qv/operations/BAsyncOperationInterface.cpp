// Every field is read and written under the object's recursive lock; LockR and LockW are the
// same lock here. StatusInfo and ProgressInfo keep the lock across their notification, which
// is safe because neither a window post nor a dispatcher post waits, and a synchronous send
// happens only on the dispatcher thread, whose handlers may lock the object again.
#include <algorithm>
#include <cstdint>
#include <qv/operations/BAsyncOperationInterface.h>
#include <qv/operations/BAutoLockR.h>
#include <qv/operations/BAutoLockW.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/operations/QVPost.h>
#include <qv/platform/WindowMessages.h>

QV_REGISTER_CLASSNAME(BAsyncOperationInterface);

namespace {
// Status texts are few at a time: the array grows ten entries at once.
constexpr unsigned long long kStatusGrowth = 10;
// A window's progress bar never shows the end: 100 arrives as 99.
constexpr unsigned int kSinkPercentLimit = 99;

// Sent on the dispatcher thread, so its handlers see the report at once; posted elsewhere.
void Notify(unsigned int message, BAsyncOperationInterface* operation, unsigned long long param2) {
    auto const param1 =
        static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(operation));
    if (QVCurrentThreadIsDispatcherThread())
        QVSend(message, param1, param2);
    else
        QVPost(message, param1, param2);
}
} // namespace

BAsyncOperationInterface::BAsyncOperationInterface() : m_status_messages(kStatusGrowth) {}

BAsyncOperationInterface::~BAsyncOperationInterface() = default;

bool BAsyncOperationInterface::IsStopping() {
    BAutoLockR lock(*this);
    return m_stop;
}

bool BAsyncOperationInterface::IsStoppingWeak() {
    BAutoLockR lock(*this);
    return m_stop;
}

void BAsyncOperationInterface::StatusInfo(WString const& text) {
    BAutoLockW lock(*this);
    unsigned int const id = ++m_status_id;
    m_status_messages.Set(id, text);
    if (HWND sink = GetMessageSink())
        qv::platform::PostMessageW(sink, MSG_SINK_STATUS, id, 0);
    else
        Notify(MSG_ASYNC_STATUS, this, id);
}

void BAsyncOperationInterface::ProgressInfo(unsigned int percent) {
    BAutoLockR lock(*this);
    if (HWND sink = GetMessageSink())
        qv::platform::PostMessageW(sink, MSG_SINK_PROGRESS, std::min(percent, kSinkPercentLimit),
                                   0);
    else
        Notify(MSG_ASYNC_PROGRESS, this, percent);
}

void BAsyncOperationInterface::ErrorInfo(BError const& error) {
    SetError(error);
    Notify(MSG_ASYNC_ERROR, this, 0);
}

WString BAsyncOperationInterface::FetchStatusMessage(int id, bool keep) {
    BAutoLockW lock(*this);
    unsigned long long const index = m_status_messages.Find(static_cast<unsigned int>(id));
    if (index == BMap<unsigned int, WString>::kNotFound)
        return WString();
    WString text = m_status_messages[index].m_value;
    if (!keep)
        m_status_messages.RemoveAt(index);
    return text;
}

void BAsyncOperationInterface::Stop() {
    BAutoLockW lock(*this);
    m_stop = true;
}

BError BAsyncOperationInterface::GetError() {
    BAutoLockR lock(*this);
    return m_error;
}

void BAsyncOperationInterface::SetError(BError const& error) {
    BAutoLockW lock(*this);
    m_error = error;
}

void BAsyncOperationInterface::SetMessageSink(HWND sink) {
    BAutoLockW lock(*this);
    m_message_sink = sink;
}

HWND BAsyncOperationInterface::GetMessageSink() {
    BAutoLockR lock(*this);
    return m_message_sink;
}

void BAsyncOperationInterface::ActivateBreak(bool) {}

bool BAsyncOperationInterface::BreakLongOperation(bool) {
    BAutoLockR lock(*this);
    return m_stop;
}

void BAsyncOperationInterface::TestUserBreak() const {
    BAutoLockR lock(*this);
    if (m_stop)
        throw BError(BError::kUserStopsFunction);
}
