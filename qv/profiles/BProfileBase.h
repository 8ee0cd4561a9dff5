/// \file
/// BProfileBase: the second profile interface, beside IProfile, with arguments by value, a
/// default for every read, a numbered form of most operations (index 3 of "Gain" is "Gain3")
/// and a mode that decides whether writing is allowed. BProfile implements it on an ini file.
///
/// Threads: one object belongs to one thread at a time (its current section).
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/strings/WString.h>

class QV_EXPORT BProfileBase : public BSmartObj {
public:
    ~BProfileBase() override;

    // The virtual operations in the order of their slots. Writes give true when the store
    // took the value; reads give the default for a missing key.
    virtual bool IsValid() const = 0;
    virtual void SetSection(WString section) = 0;
    virtual WString GetSection() const = 0;
    virtual bool WriteString(int index, WString key, WString value) = 0;
    virtual bool WriteString(WString key, WString value) = 0;
    virtual bool WriteInt(int index, WString key, int value) = 0;
    virtual bool WriteInt(WString key, int value) = 0;
    virtual bool WriteDouble(int index, WString key, double value) = 0;
    virtual bool WriteDouble(WString key, double value) = 0;
    virtual bool WriteMem(int index, WString key, void* data, unsigned int size) = 0;
    virtual bool WriteMem(WString key, void* data, unsigned int size) = 0;
    virtual bool WriteBoolean(WString key, bool value) = 0;
    virtual WString ReadString(int index, WString key, WString defaultValue) = 0;
    virtual WString ReadString(WString key, WString defaultValue) = 0;
    virtual int ReadInt(int index, WString key, int defaultValue) = 0;
    virtual int ReadInt(WString key, int defaultValue) = 0;
    virtual double ReadDouble(int index, WString key, double defaultValue) = 0;
    virtual double ReadDouble(WString key, double defaultValue) = 0;
    virtual bool ReadMem(int index, WString key, void* data, unsigned int size) = 0;
    virtual bool ReadMem(WString key, void* data, unsigned int size) = 0;
    virtual bool ReadBoolean(WString key, bool defaultValue) = 0;
    virtual void DeleteKey(WString key) = 0;
    virtual void DeleteSection() = 0;
    virtual bool ExistsSection(WString section) const = 0;

protected:
    /// The key of the numbered forms: key and index as "%s%d".
    static WString IndexedKey(WString const& key, int index);

    QV_DECLARE_CLASSNAME(BProfileBase)
};
