#include <qv/core/BError.h>
#include <qv/profiles/BConfig.h>

namespace {

// A typed read: the text, then its conversion; a failed read passes its result on and a text
// that does not convert gives the failure, the variable untouched either way.
template <class T>
int ReadConverted(BConfig const& config, WString const& name, T& value) {
    WString text;
    if (int result = config.ReadString(name, text); result != 0)
        return result;
    T converted;
    if (!text.Convert(converted))
        return BConfig::kFailure;
    value = converted;
    return 0;
}

WString Formatted(char16_t const* format, double value) {
    WString text;
    text.Printf(format, value);
    return text;
}

} // namespace

int BConfig::CopyTo(SP<BConfig> target) const {
    if (!target)
        return kFailure;
    int result = 0;
    BArray<WString> names;
    if (QueryKeys(names) == 0) {
        for (WString const& name : names) {
            WString value;
            if (ReadString(name, value) != 0)
                continue;
            int written = target->WriteString(name, value);
            if (result == 0)
                result = written;
        }
    }
    BArray<WString> sections;
    if (QuerySubSections(sections) == 0) {
        for (WString const& name : sections) {
            SP<BConfig> from = Child(name);
            if (!from)
                continue;
            int copied = from->CopyTo(target->Child(name));
            if (result == 0)
                result = copied;
        }
    }
    return result;
}

int BConfig::ReadInt(WString name, int& value) const {
    return ReadConverted(*this, name, value);
}

int BConfig::WriteInt(WString name, int value) {
    return WriteString(name, WString::FromInt(value));
}

int BConfig::ReadFloat(WString name, float& value) const {
    return ReadConverted(*this, name, value);
}

int BConfig::WriteFloat(WString name, float value) {
    return WriteString(name, Formatted(u"%.8g", static_cast<double>(value)));
}

int BConfig::ReadDouble(WString name, double& value) const {
    return ReadConverted(*this, name, value);
}

int BConfig::WriteDouble(WString name, double value) {
    return WriteString(name, Formatted(u"%.16g", value));
}

int BConfig::ReadBool(WString name, bool& value) const {
    WString text;
    if (int result = ReadString(name, text); result != 0)
        return result;
    if (text.IEqual(u"TRUE")) {
        value = true;
    } else if (text.IEqual(u"FALSE")) {
        value = false;
    } else {
        int number;
        if (!text.Convert(number))
            return kFailure;
        value = number != 0;
    }
    return 0;
}

int BConfig::WriteBool(WString name, bool value) {
    return WriteString(name, WString(value ? u"True" : u"False"));
}
