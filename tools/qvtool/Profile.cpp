// Profiles through the library's own classes: a binary profile lists its typed values
// (BBinProfile::Keys), an ini or text profile its sections and keys (BIniProfile). Reads of a
// single key go through OpenProfile, which picks the class by the file's first bytes.
#include "FileKind.h"
#include "Formats.h"

#include <cstdio>

namespace qvtool::profile {

namespace {

bool IsBinary(std::string const& path) {
    FileKind kind = Recognise(path);
    return kind == FileKind::BinaryProfileAnsi || kind == FileKind::BinaryProfileUnicode;
}

json Typed(BVariant const& value) {
    if (auto* v = dynamic_cast<TVariant<int> const*>(&value))
        return {{"type", "int"}, {"value", v->Value()}};
    if (auto* v = dynamic_cast<TVariant<double> const*>(&value))
        return {{"type", "double"}, {"value", v->Value()}};
    if (auto* v = dynamic_cast<TVariant<bool> const*>(&value))
        return {{"type", "bool"}, {"value", v->Value()}};
    if (auto* v = dynamic_cast<TVariant<WString> const*>(&value))
        return {{"type", "text"}, {"value", Utf8(v->Value())}};
    if (auto* v = dynamic_cast<TVariant<BString> const*>(&value))
        return {{"type", "ANSI text"}, {"value", Utf8(v->Value())}};
    auto const& block = dynamic_cast<BVarMemBlock const&>(value);
    std::string hex;
    auto const* bytes = static_cast<unsigned char const*>(block.Data());
    for (std::uint32_t i = 0; i < block.Size() && i < 64; ++i) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02x", bytes[i]);
        hex += digits;
    }
    return {{"type", "block"}, {"size", block.Size()}, {"bytes", hex}};
}

// "[section]key" split at the first ']'.
std::pair<std::string, std::string> Split(std::string const& joined) {
    std::size_t close = joined.find(']');
    if (joined.empty() || joined[0] != '[' || close == std::string::npos)
        return {"", joined};
    return {joined.substr(1, close - 1), joined.substr(close + 1)};
}

// Every section with its keys and values, as one document.
json Sections(std::string const& path) {
    json sections = json::object();
    if (IsBinary(path)) {
        BBinProfile profile(WString::FromUtf8(path), kProfileReadOnly);
        for (WString const& key : profile.Keys()) {
            auto [section, name] = Split(Utf8(key));
            sections[section][name] = Typed(*profile.Value(key));
        }
        return sections;
    }
    BIniProfile profile(WString::FromUtf8(path), WString(), false);
    BArray<WString> names;
    profile.GetSections(names);
    for (WString const& section : names) {
        json& keys = sections[Utf8(section)] = json::object();
        BArray<WString> keyNames;
        profile.LoadSection(section, &keyNames);
        for (WString const& key : keyNames) {
            WString value;
            profile.Read(key, value);
            keys[Utf8(key)] = Utf8(value);
        }
    }
    return sections;
}

} // namespace

json Info(std::string const& path) {
    json sections = Sections(path);
    std::size_t keys = 0;
    for (auto const& [name, section] : sections.items())
        keys += section.size();
    return {{"sections", sections.size()}, {"keys", keys}};
}

json Dump(std::string const& path) {
    return {{"sections", Sections(path)}};
}

json Check(std::string const& path) {
    if (IsBinary(path) && !BBinProfile(WString::FromUtf8(path), kProfileReadOnly).IsValid())
        return {{"sound", false}, {"damage", {{"reason", "the file holds no binary profile"}}}};
    return {{"sound", true}, {"keys", Info(path)["keys"]}};
}

int Get(std::string const& path, std::string const& section, std::string const& key) {
    if (section.empty() || key.empty())
        return List(path, section);
    SP<BProfileBase> profile = OpenProfile(WString::FromUtf8(path));
    if (!profile)
        throw Failure{kExitUsage, path + ": cannot be opened"};
    if (auto* binary = dynamic_cast<BBinProfile*>(profile.get())) {
        WString joined = WString::FromUtf8("[" + section + "]" + key).Lower();
        SP<BVariant> value = binary->Value(joined);
        if (!value)
            throw Failure{kExitDamaged, path + ": no key " + key + " in section " + section};
        std::printf("%s\n", Typed(*value)["value"].dump().c_str());
        return kExitSound;
    }
    profile->SetSection(WString::FromUtf8(section));
    WString const missing(u"\x01");
    WString value = profile->ReadString(WString::FromUtf8(key), missing);
    if (value == missing)
        throw Failure{kExitDamaged, path + ": no key " + key + " in section " + section};
    std::printf("%s\n", Utf8(value).c_str());
    return kExitSound;
}

int List(std::string const& path, std::string const& section) {
    json sections = Sections(path);
    if (section.empty()) {
        for (auto const& [name, keys] : sections.items())
            std::printf("%s\n", name.c_str());
        return kExitSound;
    }
    for (auto const& [name, keys] : sections.items()) {
        if (WString::FromUtf8(name).IEqual(WString::FromUtf8(section)))
            for (auto const& [key, value] : keys.items())
                std::printf("%s\n", key.c_str());
    }
    return kExitSound;
}

int Set(std::string const& path, std::string const& section, std::string const& key,
        std::string const& value) {
    WString wideValue = WString::FromUtf8(value);
    if (IsBinary(path)) {
        BBinProfile profile(WString::FromUtf8(path), kProfileReadWrite);
        profile.SetSection(WString::FromUtf8(section));
        // A number or a flag keeps its type when the new text is one.
        WString joined = WString::FromUtf8("[" + section + "]" + key).Lower();
        SP<BVariant> old = profile.Value(joined);
        int number;
        double real;
        if (dynamic_cast<TVariant<int>*>(old.get()) && wideValue.Convert(number))
            profile.WriteInt(WString::FromUtf8(key), number);
        else if (dynamic_cast<TVariant<double>*>(old.get()) && wideValue.Convert(real))
            profile.WriteDouble(WString::FromUtf8(key), real);
        else if (dynamic_cast<TVariant<bool>*>(old.get()) && (value == "true" || value == "false"))
            profile.WriteBoolean(WString::FromUtf8(key), value == "true");
        else
            profile.WriteString(WString::FromUtf8(key), wideValue);
        return kExitSound;
    }
    if (BProfile::WriteString(WString::FromUtf8(path), WString::FromUtf8(section),
                              WString::FromUtf8(key), wideValue) != 0)
        throw Failure{kExitDamaged, path + ": cannot be written"};
    return kExitSound;
}

} // namespace qvtool::profile
