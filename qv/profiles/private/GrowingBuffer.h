// The read loop of the ini stores: the private-profile service cannot say how long a text is,
// so the buffer grows by 512 characters until the answer leaves room, up to 32768.
#pragma once

#include <cstdint>
#include <qv/core/containers/BArray.h>
#include <qv/core/strings/WString.h>
#include <string_view>
#include <utility>

namespace qv::detail {

/// Runs call(buffer, size + extra) with size 512, 1024, ... 32768 until the answer n has
/// n + 1 < size; the buffer's text and the last n.
template <class Call>
std::pair<WString, std::uint32_t> GrowingRead(std::uint32_t extra, Call call) {
    constexpr std::uint32_t kStep = 512;
    constexpr std::uint32_t kLimit = 32768;
    WString text;
    std::uint32_t n = 0;
    for (std::uint32_t size = kStep; size <= kLimit; size += kStep) {
        text.Fill(size, u' ');
        n = call(text.Str(), size + extra);
        if (n + 1 < size)
            break;
    }
    return {text, n};
}

/// The names of a list answer: each ended by a NUL within the first n characters.
inline BArray<WString> NamesOfList(WString const& text, std::uint32_t n) {
    BArray<WString> names;
    char16_t const* units = text.CStr();
    std::uint32_t start = 0;
    for (std::uint32_t i = 0; i < n; ++i) {
        if (units[i] == 0) {
            names.Add(WString(std::u16string_view(units + start, i - start)));
            start = i + 1;
        }
    }
    return names;
}

} // namespace qv::detail
