/// \file
/// Qv::LogItem: a log entry as a sink may keep it.
#pragma once

#include <map>
#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>
#include <utility>

namespace Qv {

/// Named texts and one 64-bit value, whose keys and meaning are the sink's. The library itself
/// never fills one. A plain value: copy it freely; threads may share a const one.
class QV_EXPORT LogItem {
public:
    /// No texts, the value 0.
    LogItem() = default;
    LogItem(LogItem const&) = default;
    /// A move takes the texts over and leaves the source with none; the value is copied.
    LogItem(LogItem&& other) noexcept
        : m_texts(std::exchange(other.m_texts, {})), m_value(other.m_value) {}
    LogItem& operator=(LogItem const&) = default;
    LogItem& operator=(LogItem&& other) noexcept {
        m_texts = std::exchange(other.m_texts, {});
        m_value = other.m_value;
        return *this;
    }
    ~LogItem() = default;

    /// The texts by name, in the order of the names.
    std::map<WString, WString> m_texts;
    /// A value of the sink's.
    long long m_value = 0;
};

} // namespace Qv
