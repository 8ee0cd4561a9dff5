#include <qv/profiles/BCamProfile.h>

QV_REGISTER_CLASSNAME(BCamProfile);

BCamProfile::BCamProfile(WString const& path, WString const& section)
    : BIniProfile(path, section, false), m_rootSection(section) {}

bool BCamProfile::Write(WString const& key, WString const& value) const {
    WString stored;
    Read(key, stored);
    if (stored.IEqual(value))
        return true;
    return WriteString(key, value);
}

bool BCamProfile::GoToRoot() const {
    return LoadSection(m_rootSection, nullptr);
}

char16_t const* BCamProfile::Root() {
    return u"Quorvel Imaging Device %d";
}

bool BCamProfile::ReadNumber(WString const& key, int& value) const {
    return Read(key, value, kNoMin, kNoMax);
}

bool BCamProfile::WriteNumber(WString const& key, int value) const {
    int stored = 0;
    if (ReadNumber(key, stored) && stored == value)
        return true;
    return Write(key, Convert(value));
}

bool BCamProfile::ReadApi(WString& api) const {
    bool read = Read(StringKeyApi(), api);
    api.EraseAllChars(u' ');
    return read;
}

bool BCamProfile::IsApi(WString const& api) const {
    WString stored;
    bool read = Read(StringKeyApi(), stored);
    stored.EraseAllChars(u' ');
    return read && api.IEqual(stored);
}

bool BCamProfile::WriteApi(WString const& api) const {
    return Write(StringKeyApi(), api);
}

bool BCamProfile::ReadSerialNumber(WString& number) const {
    return Read(StringKeySerialNumber(), number);
}

bool BCamProfile::ReadSerialNumber(unsigned long& number) const {
    return Read(StringKeySerialNumber(), number, 0, kNoMax);
}

bool BCamProfile::WriteSerialNumber(WString const& number) const {
    return Write(StringKeySerialNumber(), number);
}

bool BCamProfile::WriteSerialNumber(unsigned long number) const {
    unsigned long stored = 0;
    if (Read(StringKeySerialNumber(), stored, 0, kNoMax) && stored == number)
        return true;
    return Write(StringKeySerialNumber(), static_cast<int>(number));
}

bool BCamProfile::ReadName(WString& name) const {
    return Read(StringKeyName(), name);
}

bool BCamProfile::WriteName(WString const& name) const {
    return Write(StringKeyName(), name);
}

bool BCamProfile::ReadVendor(WString& vendor) const {
    return Read(StringKeyVendor(), vendor);
}

bool BCamProfile::WriteVendor(WString const& vendor) const {
    return Write(StringKeyVendor(), vendor);
}

bool BCamProfile::ReadModus(WString& modus) const {
    return Read(StringKeyModus(), modus);
}

bool BCamProfile::ReadModus(int& modus) const {
    return ReadNumber(StringKeyModus(), modus);
}

bool BCamProfile::WriteModus(WString const& modus) const {
    return Write(StringKeyModus(), modus);
}

bool BCamProfile::ReadRate(WString& rate) const {
    return Read(StringKeyRate(), rate);
}

bool BCamProfile::ReadRate(int& rate) const {
    return ReadNumber(StringKeyRate(), rate);
}

bool BCamProfile::WriteRate(WString const& rate) const {
    return Write(StringKeyRate(), rate);
}

bool BCamProfile::WriteRate(int rate) const {
    return WriteNumber(StringKeyRate(), rate);
}

bool BCamProfile::ReadFormat(WString& format) const {
    return Read(StringKeyFormat(), format);
}

bool BCamProfile::ReadFormat(int& format) const {
    return ReadNumber(StringKeyFormat(), format);
}

bool BCamProfile::WriteFormat(WString const& format) const {
    return Write(StringKeyFormat(), format);
}

bool BCamProfile::WriteFormat(int format) const {
    return WriteNumber(StringKeyFormat(), format);
}

bool BCamProfile::ReadGain(int& gain) const {
    return ReadNumber(StringKeyGain(), gain);
}

bool BCamProfile::WriteGain(int gain) const {
    return WriteNumber(StringKeyGain(), gain);
}

bool BCamProfile::ReadShutter(int& shutter) const {
    return ReadNumber(StringKeyShutter(), shutter);
}

bool BCamProfile::WriteShutter(int shutter) const {
    return WriteNumber(StringKeyShutter(), shutter);
}

bool BCamProfile::ReadGamma(float& gamma) const {
    return Read(StringKeyGamma(), gamma);
}

bool BCamProfile::WriteGamma(float gamma) const {
    float stored = 0;
    if (Read(StringKeyGamma(), stored) && stored == gamma)
        return true;
    return IProfile::Write(StringKeyGamma(), static_cast<double>(gamma));
}

bool BCamProfile::ReadClocking(int& clocking) const {
    return ReadNumber(StringKeyClocking(), clocking);
}

bool BCamProfile::WriteClocking(int clocking) const {
    return WriteNumber(StringKeyClocking(), clocking);
}

bool BCamProfile::ReadAllowedShutters(WString& shutters) const {
    return Read(StringKeyAllowedShutters(), shutters);
}

bool BCamProfile::WriteAllowedShutters(WString const& shutters) const {
    return Write(StringKeyAllowedShutters(), shutters);
}

bool BCamProfile::ReadMaxShutterForFast(int& shutter) const {
    return ReadNumber(StringKeyMaxShutterForFast(), shutter);
}

bool BCamProfile::WriteMaxShutterForFast(int shutter) const {
    return WriteNumber(StringKeyMaxShutterForFast(), shutter);
}

bool BCamProfile::WriteIdent(WString const& ident) const {
    return Write(StringKeyIdent(), ident);
}

bool BCamProfile::WriteMIIdent(WString const& ident) const {
    return Write(StringKeyMIIdent(), ident);
}

bool BCamProfile::ReadBytePerPacket(WString& bytes) const {
    return Read(StringKeyBytePerPacket(), bytes);
}

bool BCamProfile::ReadFastGrabFactor(float& factor) {
    return Read(StringKeyFastGrabFactor(), factor);
}

bool BCamProfile::ReadWB_R(int& value) {
    return ReadNumber(StringKeyWB_R(), value);
}

bool BCamProfile::ReadWB_G(int& value) {
    return ReadNumber(StringKeyWB_G(), value);
}

bool BCamProfile::ReadWB_B(int& value) {
    return ReadNumber(StringKeyWB_B(), value);
}

bool BCamProfile::ReadWB_Rmono(int& value) {
    return ReadNumber(StringKeyWB_Rmono(), value);
}

bool BCamProfile::ReadWB_Gmono(int& value) {
    return ReadNumber(StringKeyWB_Gmono(), value);
}

bool BCamProfile::ReadWB_Bmono(int& value) {
    return ReadNumber(StringKeyWB_Bmono(), value);
}

bool BCamProfile::WriteWB_R(int value) {
    return WriteNumber(StringKeyWB_R(), value);
}

bool BCamProfile::WriteWB_G(int value) {
    return WriteNumber(StringKeyWB_G(), value);
}

bool BCamProfile::WriteWB_B(int value) {
    return WriteNumber(StringKeyWB_B(), value);
}

// The key names of the camera file.
WString BCamProfile::StringKeyApi() const {
    return u"API";
}
WString BCamProfile::StringKeySerialNumber() const {
    return u"Serial.Number";
}
WString BCamProfile::StringKeyFoundSerialNumber() const {
    return u"Found.Serial.Number";
}
WString BCamProfile::StringKeyName() const {
    return u"Name";
}
WString BCamProfile::StringKeyVendor() const {
    return u"Vendor";
}
WString BCamProfile::StringKeyModus() const {
    return u"VIDEOMODE";
}
WString BCamProfile::StringKeyRate() const {
    return u"FRAMERATE";
}
WString BCamProfile::StringKeyFormat() const {
    return u"VIDEOFORMAT";
}
WString BCamProfile::StringKeyGain() const {
    return u"Gain";
}
WString BCamProfile::StringKeyShutter() const {
    return u"Shutter";
}
WString BCamProfile::StringKeyGamma() const {
    return u"Gamma";
}
WString BCamProfile::StringKeyClocking() const {
    return u"Clocking";
}
WString BCamProfile::StringKeyAllowedShutters() const {
    return u"AllowedShutters";
}
WString BCamProfile::StringKeyMaxShutterForFast() const {
    return u"MaxShutterForFast";
}
WString BCamProfile::StringKeyIdent() const {
    return u"IDENTIFIER";
}
WString BCamProfile::StringKeyMIIdent() const {
    return u"MI_IDENTIFIER";
}
WString BCamProfile::StringKeyBytePerPacket() const {
    return u"BYTEPERPACKET";
}
WString BCamProfile::StringKeyFastGrabFactor() const {
    return u"FastGrabFactor";
}
WString BCamProfile::StringKeyWB_R() const {
    return u"WhiteBalance_R";
}
WString BCamProfile::StringKeyWB_G() const {
    return u"WhiteBalance_G";
}
WString BCamProfile::StringKeyWB_B() const {
    return u"WhiteBalance_B";
}
WString BCamProfile::StringKeyWB_Rmono() const {
    return u"WhiteBalance_Rmono";
}
WString BCamProfile::StringKeyWB_Gmono() const {
    return u"WhiteBalance_Gmono";
}
WString BCamProfile::StringKeyWB_Bmono() const {
    return u"WhiteBalance_Bmono";
}
