/// \file
/// BSmartObj: the root of the class tree. Every long-lived object derives from it and is held
/// through SP<T>. It gives each object a class name, a version, a memory figure and the hooks
/// through which archives store and load it (docs/archives.md tells how an archive uses them).
#pragma once

#include <concepts>
#include <qv/core/ClassNameRegistry.h>
#include <qv/core/Export.h>
#include <qv/core/SP.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <qv/portable/BSmartObjBase.h>

class BArchive;

/// A counted object with a class name in the stored form "class " plus the bare name. Make one
/// with new straight into an SP<T>: the count starts at 0, the first SP takes it and the last
/// one destroys it; an object on the stack or inside another must never go into an SP. A class
/// becomes storable by overriding the persistence hooks and registering a static read function
/// (RegisterArchiveCallback). An archive calls WritePrefix, then WriteData, when it writes, and
/// ReadPrefix, the read function, UpdateAssociations and last VerifyObj when it reads. The
/// count is atomic; everything else belongs to one thread at a time.
class QV_EXPORT BSmartObj : public BSmartObjBase {
public:
    QV_DECLARE_CLASSNAME(BSmartObj)

    /// @name Construction forwards to the base: a copy gets a count of 0 and a fresh number.
    ///@{
    BSmartObj() = default;
    BSmartObj(BSmartObj const& other) : BSmartObjBase(other) {}
    ///@}
    ~BSmartObj() override = default;

    // The virtual operations in the order of their slots.
    /// The bytes this object holds outside itself; 0 here.
    virtual unsigned long long AllocatedMemory() const;
    /// Copies nothing: neither the count nor the number of an object is ever assigned.
    virtual BSmartObj const& operator=(BSmartObj const& other);
    /// Writes the object's fields behind its prefix; nothing here.
    virtual void WriteData(BArchive& archive) const;
    /// Turns the reference numbers a read function left into pointers, through the archive's
    /// QueryObject, once every object of the load is read; nothing here.
    virtual void UpdateAssociations(BArchive& archive);
    /// The class name written into the prefix, under which the read function is found; the
    /// dynamic type's ClassName() here. A class stored under another name overrides it.
    virtual char const* ArchiveName() const;
    /// The last check of a loaded object: one false answer makes BQuorvelArchive::TakeOut give
    /// null. True here.
    virtual bool VerifyObj();
    /// The version written into the prefix and handed to the read function; 0 here.
    virtual int Version() const;
    /// A line for diagnostics: "Type : " followed at once by the class name.
    virtual WString Properties() const;
    /// Writes the object prefix: as id the hexadecimal text of the index the archive gives
    /// this object, then \p name, ArchiveName() (empty for null), Version() and a placeholder
    /// for the record size (32 bits in format 6, 64 bits otherwise) that the archive patches.
    virtual void WritePrefix(BArchive& archive, BString name) const;

    /// The class name of the dynamic type, "class " plus the bare name. The pointer stays
    /// valid for the life of the process; any thread may ask.
    char const* ClassName() const;

    /// @name Hexadecimal text, lower case, without prefix or leading zeros; zero is "0".
    /// Archives key objects by Id of their index.
    ///@{
    /// Of this object's address.
    BString Id() const;
    static BString Id(void* pointer);
    static BString Id(unsigned long long number);
    /// Any integer, taken as its unsigned 64-bit pattern (-1 gives "ffffffffffffffff").
    template <std::integral I>
    static BString Id(I number) {
        return Id(static_cast<unsigned long long>(number));
    }
    ///@}

    /// A probe for a pointer of doubtful standing, not a check of consistency: calls VerifyObj
    /// and is true if the call came back, whatever it answered. False for null and when the
    /// call throws; an invalid address is not caught and may crash.
    static bool IsValidObject(BSmartObj* object);

    /// The read function of the root class, which is not storable: always null.
    static SP<BSmartObj> Read(BArchive& archive, int version);
    /// Reads an object prefix as WritePrefix writes it. False when the archive cannot read it
    /// whole; \p version and \p size change only when their field was read. A 32-bit size
    /// (formats before 8) is widened with its sign.
    static bool ReadPrefix(BArchive& archive, BString& id, BString& name, BString& className,
                           int& version, unsigned long long& size);
};
