/// \file
/// BIStreamArchive: the reader of stream archives. docs/archives.md tells the file format.
#pragma once

#include <memory>
#include <qv/core/Export.h>
#include <qv/persistence/BArchive.h>

/// Reads back what BOStreamArchive wrote, one object after another in the order of writing,
/// each with the objects it refers to. There is no index and no second phase: references
/// arrive as objects, and nothing calls UpdateAssociations. A damaged, truncated or foreign
/// stream gives null objects, an archive that is not good, or the archive's BError, never a
/// crash, a hang or an allocation beyond what the file holds. An archive belongs to one thread
/// at a time.
class QV_EXPORT BIStreamArchive : public BArchive {
public:
    QV_DECLARE_CLASSNAME(BIStreamArchive)

    /// Opens the file at path and checks its header against the archive's name. A file that
    /// cannot be opened, or whose identifier, format name, version or archive name differ,
    /// leaves the archive not good without an exception; a file that does not begin with the
    /// number 16 (a short one included) throws BError(31182, "BIStreamArchive").
    BIStreamArchive(WString path, WString name);
    ~BIStreamArchive() override;
    BIStreamArchive(BIStreamArchive const&) = delete;
    BIStreamArchive& operator=(BIStreamArchive const&) = delete;

    /// Always 9, the only format of stream archives.
    int Version() const override;
    /// Throws BError(31182, "BIStreamArchive").
    void ThrowError() const override;
    /// The file is open and no read has failed.
    bool IsGood() const override;
    /// Always READ.
    MODE Mode() const override;
    /// Throws BError(31182, "BIStreamArchive - invalid method").
    void Insert(BSmartObj* object, char const* name) override;
    /// Reads the next object, whatever name is given, with the objects it refers to; the
    /// caller owns it. Null for a stored null, at the end of the file and for a prefix that
    /// does not read. Throws ThrowError's BError for a class without a read function (the
    /// stream cannot be followed past it) and for objects nested deeper than 2000 levels.
    SP<BSmartObj> TakeOut(char const* name) override;
    /// Always null.
    SP<BSmartObj> QueryObject(void* reference) const override;
    /// Reads up to n bytes; the number that came, 0 for n = 0 or a closed file.
    unsigned long long ReadMemoryBlock(void* buffer, unsigned long long size) override;
    /// Always 0.
    unsigned long long WriteMemoryBlock(void const* buffer, unsigned long long size) override;
    /// Always true.
    bool VerifyObjects() override;
    /// Always 0.
    unsigned int MapPointerToIndex(void* object) override;
    /// Always false.
    bool Force64bitFormat() const override;

    /// The path given to the constructor.
    WString Path() const;
    /// True when the last TakeOut found no object at all, only the end of the file: a null
    /// that TakeOut gives is otherwise a stored null. Beyond the Windows class, for readers
    /// that walk a stream to its end.
    bool AtEnd() const;

private:
    friend class BArchive; // reads the objects of references in place

    // The next object; ended tells whether its flag could not even be read (the end of the
    // file), which ends a list being read.
    SP<BSmartObj> Next(bool& ended);

    struct State;
    std::unique_ptr<State> m_state;
};
