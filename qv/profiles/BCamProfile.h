/// \file
/// BCamProfile: the ini file of one camera of the measuring head: its identity, video mode,
/// exposure and white balance, in the section "Current". Every accessor reads or writes the
/// file at once; writes leave the file untouched when the stored value is the same already
/// (text compared without regard to letter case), so an unchanged setting never changes the
/// file's modification time. Reads give false and leave the caller's variable alone for a
/// missing key.
///
/// Threads: one object belongs to one thread at a time.
#pragma once

#include <qv/profiles/BIniProfile.h>

class QV_EXPORT BCamProfile : public BIniProfile {
public:
    /// A profile on \p path whose current and root section is \p section.
    BCamProfile(WString const& path, WString const& section);
    BCamProfile(BCamProfile const& other) = default;
    BCamProfile& operator=(BCamProfile const& other) = default;

    /// Writes \p value unless the key holds the same text in any letter case already; an
    /// empty text over a missing key writes nothing. True when the file holds the value.
    bool Write(WString const& key, WString const& value) const override;
    using BIniProfile::Read;
    using BIniProfile::Write;

    /// Makes the root section current again; whether it holds any key.
    bool GoToRoot() const;
    /// The section name of a camera in the sensor file, a format with the camera's index.
    static char16_t const* Root();

    /// The "API" text with every blank removed (also when the read failed).
    bool ReadApi(WString& api) const;
    /// True when the key is there and, without its blanks, equals \p api in any letter case.
    bool IsApi(WString const& api) const;
    bool WriteApi(WString const& api) const;
    bool ReadSerialNumber(WString& number) const;
    /// False for a stored negative number.
    bool ReadSerialNumber(unsigned long& number) const;
    bool WriteSerialNumber(WString const& number) const;
    bool WriteSerialNumber(unsigned long number) const;
    bool ReadName(WString& name) const;
    bool WriteName(WString const& name) const;
    bool ReadVendor(WString& vendor) const;
    bool WriteVendor(WString const& vendor) const;
    bool ReadModus(WString& modus) const;
    bool ReadModus(int& modus) const;
    bool WriteModus(WString const& modus) const;
    bool ReadRate(WString& rate) const;
    bool ReadRate(int& rate) const;
    bool WriteRate(WString const& rate) const;
    bool WriteRate(int rate) const;
    bool ReadFormat(WString& format) const;
    bool ReadFormat(int& format) const;
    bool WriteFormat(WString const& format) const;
    bool WriteFormat(int format) const;
    bool ReadGain(int& gain) const;
    bool WriteGain(int gain) const;
    bool ReadShutter(int& shutter) const;
    bool WriteShutter(int shutter) const;
    bool ReadGamma(float& gamma) const;
    /// Writes "%g" of the value unless the stored text reads back as exactly this float.
    bool WriteGamma(float gamma) const;
    bool ReadClocking(int& clocking) const;
    bool WriteClocking(int clocking) const;
    bool ReadAllowedShutters(WString& shutters) const;
    bool WriteAllowedShutters(WString const& shutters) const;
    bool ReadMaxShutterForFast(int& shutter) const;
    bool WriteMaxShutterForFast(int shutter) const;
    bool WriteIdent(WString const& ident) const;
    bool WriteMIIdent(WString const& ident) const;
    bool ReadBytePerPacket(WString& bytes) const;
    bool ReadFastGrabFactor(float& factor);
    bool ReadWB_R(int& value);
    bool ReadWB_G(int& value);
    bool ReadWB_B(int& value);
    bool ReadWB_Rmono(int& value);
    bool ReadWB_Gmono(int& value);
    bool ReadWB_Bmono(int& value);
    bool WriteWB_R(int value);
    bool WriteWB_G(int value);
    bool WriteWB_B(int value);

protected:
    // The virtual operations added behind those of BIniProfile, in the order of their slots:
    // the key names, through which every accessor gets its key.
    virtual WString StringKeyApi() const;
    virtual WString StringKeySerialNumber() const;
    virtual WString StringKeyFoundSerialNumber() const;
    virtual WString StringKeyName() const;
    virtual WString StringKeyVendor() const;
    virtual WString StringKeyModus() const;
    virtual WString StringKeyRate() const;
    virtual WString StringKeyFormat() const;
    virtual WString StringKeyGain() const;
    virtual WString StringKeyShutter() const;
    virtual WString StringKeyGamma() const;
    virtual WString StringKeyClocking() const;
    virtual WString StringKeyAllowedShutters() const;
    virtual WString StringKeyMaxShutterForFast() const;
    virtual WString StringKeyIdent() const;
    virtual WString StringKeyMIIdent() const;
    virtual WString StringKeyBytePerPacket() const;
    virtual WString StringKeyFastGrabFactor() const;
    virtual WString StringKeyWB_R() const;
    virtual WString StringKeyWB_G() const;
    virtual WString StringKeyWB_B() const;
    virtual WString StringKeyWB_Rmono() const;
    virtual WString StringKeyWB_Gmono() const;
    virtual WString StringKeyWB_Bmono() const;

    QV_DECLARE_CLASSNAME(BCamProfile)

private:
    bool ReadNumber(WString const& key, int& value) const;
    /// Writes a number unless the key holds it already.
    bool WriteNumber(WString const& key, int value) const;

    WString m_rootSection;
};
