#include "Report.h"

#include <cstdio>

namespace qvtool {

std::string Utf8(WString const& text) {
    return text.ToUtf8();
}

std::string Utf8(BString const& text) {
    return Utf8(WString(text));
}

std::u16string Wide(std::string const& utf8Path) {
    WString text = WString::FromUtf8(utf8Path);
    return std::u16string(text.CStr());
}

namespace {

std::string Scalar(json const& value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
}

// An array's elements are marked with a dash; an element that is an object starts its first
// field on the dash's line, YAML-like, so a list of records stays compact.
void Outline(json const& value, int depth, bool dashFirst = false) {
    bool first = true;
    for (auto const& [key, item] : value.items()) {
        std::string indent(static_cast<std::size_t>(depth) * 2, ' ');
        if (dashFirst && first)
            indent.replace(indent.size() - 2, 2, "- ");
        first = false;
        if (value.is_array() && item.is_object() && !item.empty()) {
            Outline(item, depth + 1, true);
            continue;
        }
        std::string label = value.is_array() ? "-" : key + ":";
        if (!item.is_structured() || item.empty()) {
            std::string text = !item.is_structured() ? Scalar(item)
                               : item.is_array()     ? "(none)"
                                                     : "{}";
            std::printf("%s%s %s\n", indent.c_str(), label.c_str(), text.c_str());
            continue;
        }
        std::printf("%s%s\n", indent.c_str(), label.c_str());
        Outline(item, depth + 1);
    }
}

} // namespace

void Print(json const& document, bool asJson) {
    if (asJson)
        std::printf("%s\n", document.dump(2).c_str());
    else
        Outline(document, 0);
}

} // namespace qvtool
