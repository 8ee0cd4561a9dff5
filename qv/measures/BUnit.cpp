#include <algorithm>
#include <qv/measures/BUnit.h>

QV_REGISTER_CLASSNAME(BUnit);

namespace {

// Digits behind the point beyond which a double's fixed text only gains zeros: its exact
// decimal expansion ends within 1074 places. Larger precisions are cut to this, which
// changes no digit and keeps a wild argument from asking for gigabytes of zeros.
constexpr int kMostDecimals = 1100;
// The fixed text ends where the Windows library's 128-character buffer ended.
constexpr unsigned long long kLongestText = 127;

WString NineDigits(double value) {
    WString text;
    text.Printf(u"%.9g", value);
    return text;
}

} // namespace

BUnit& BUnit::operator=(BUnit const& other) {
    m_symbol = other.m_symbol;
    m_factor = other.m_factor;
    m_precision = other.m_precision;
    return *this;
}

double BUnit::Convert(WString text) const {
    double value = 0.0;
    return text.Convert(value) ? Convert(value) : 0.0;
}

double BUnit::Convert(double value) const {
    return value * m_factor;
}

double BUnit::Revert(WString text) const {
    double value = 0.0;
    return text.Convert(value) ? Revert(value) : 0.0;
}

double BUnit::Revert(double value) const {
    return value / m_factor;
}

WString BUnit::ConvertStr(WString text) const {
    return NineDigits(Convert(text));
}

WString BUnit::ConvertStr(double value) const {
    return NineDigits(Convert(value));
}

WString BUnit::RevertStr(WString text) const {
    return NineDigits(Revert(text));
}

WString BUnit::RevertStr(double value) const {
    return NineDigits(Revert(value));
}

WString BUnit::Symbol() const {
    return m_symbol;
}

int BUnit::Precision() const {
    return m_precision;
}

WString BUnit::Format(WString text, int precision) const {
    double value = 0.0;
    return text.Convert(value) ? Format(value, precision) : text;
}

WString BUnit::Format(double value, int precision) const {
    int const decimals = precision < 0 ? m_precision : precision;
    WString text;
    text.Printf(u"%.*f", decimals < 0 ? 0 : std::min(decimals, kMostDecimals), Convert(value));
    text.CutAt(kLongestText);
    return text;
}
