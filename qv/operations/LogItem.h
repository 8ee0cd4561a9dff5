// A log entry as a sink may keep it: named texts and one 64-bit value, whose keys and meaning
// are the sink's. The library itself never fills one.
#pragma once

#include <map>
#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>
#include <utility>

namespace Qv {

class QV_EXPORT LogItem {
public:
    LogItem() = default;
    LogItem(LogItem const&) = default;
    // A move takes the texts over and leaves the source with none; the value is copied.
    LogItem(LogItem&& other) noexcept
        : m_texts(std::exchange(other.m_texts, {})), m_value(other.m_value) {}
    LogItem& operator=(LogItem const&) = default;
    LogItem& operator=(LogItem&& other) noexcept {
        m_texts = std::exchange(other.m_texts, {});
        m_value = other.m_value;
        return *this;
    }
    ~LogItem() = default;

    std::map<WString, WString> m_texts;
    long long m_value = 0;
};

} // namespace Qv
