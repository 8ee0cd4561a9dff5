// BSmartObj: the root of the class tree. Every long-lived object derives from it and is held
// through SP<T>. It gives each object a class name, a version, a memory figure and the hooks
// through which archives store and load it.
#pragma once

#include <concepts>
#include <qv/core/ClassNameRegistry.h>
#include <qv/core/Export.h>
#include <qv/core/SP.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <qv/portable/BSmartObjBase.h>

class BArchive;

class QV_EXPORT BSmartObj : public BSmartObjBase {
public:
    QV_DECLARE_CLASSNAME(BSmartObj)

    BSmartObj() = default;
    BSmartObj(BSmartObj const& other) : BSmartObjBase(other) {}
    ~BSmartObj() override = default;

    // The virtual operations in the order of their slots.
    virtual unsigned long long AllocatedMemory() const;
    // Copies nothing: neither the count nor the number of an object is ever assigned.
    virtual BSmartObj const& operator=(BSmartObj const& other);
    virtual void WriteData(BArchive& archive) const;
    virtual void UpdateAssociations(BArchive& archive);
    virtual char const* ArchiveName() const;
    virtual bool VerifyObj();
    virtual int Version() const;
    virtual WString Properties() const;
    virtual void WritePrefix(BArchive& archive, BString name) const;

    // The class name of the dynamic type, "class " plus the bare name.
    char const* ClassName() const;

    // Lower-case hexadecimal without prefix or leading zeros; zero is "0".
    BString Id() const;
    static BString Id(void* pointer);
    static BString Id(unsigned long long number);
    template <std::integral I>
    static BString Id(I number) {
        return Id(static_cast<unsigned long long>(number));
    }

    // Calls VerifyObj inside a guard. True if the call came back, whatever it answered.
    static bool IsValidObject(BSmartObj* object);

    // The root class is not storable: its read function gives null.
    static SP<BSmartObj> Read(BArchive& archive, int version);
    static bool ReadPrefix(BArchive& archive, BString& id, BString& name, BString& className,
                           int& version, unsigned long long& size);
};
