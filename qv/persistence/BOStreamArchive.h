/// \file
/// BOStreamArchive: the writer of stream archives. docs/archives.md tells the file format.
#pragma once

#include <memory>
#include <qv/core/Export.h>
#include <qv/persistence/BArchive.h>

/// Writes one object structure to a file in a single pass, each object in place inside the
/// one that refers to it. Nothing keeps track of what was written: an object reached twice is
/// written twice, and a cycle of object references is refused once it nests too deep (see
/// Insert). Its reader is BIStreamArchive. An archive belongs to one thread at a time.
class QV_EXPORT BOStreamArchive : public BArchive {
public:
    QV_DECLARE_CLASSNAME(BOStreamArchive)

    /// Creates (or replaces) the file at path and writes the header with the archive's name.
    /// A file that cannot be created leaves the archive not good; nothing is thrown.
    BOStreamArchive(WString path, WString name);
    /// Writes what is still buffered and closes the file.
    ~BOStreamArchive() override;
    BOStreamArchive(BOStreamArchive const&) = delete;
    BOStreamArchive& operator=(BOStreamArchive const&) = delete;

    /// Always 9, the only format of stream archives.
    int Version() const override;
    /// Throws BError(31182, "BOStreamArchive").
    void ThrowError() const override;
    /// The file is open and no write has failed.
    bool IsGood() const override;
    /// Always WRITE.
    MODE Mode() const override;
    /// Writes the object at once: the flag 1, its prefix (id "0", name, class, version, a size
    /// of eight 0xEA that is never filled in) and its data, with the objects it refers to in
    /// place; null writes the flag 0 alone. Throws ThrowError's BError on an archive that is
    /// not good, and when objects nest deeper than the reader could follow.
    void Insert(BSmartObj* object, char const* name) override;
    /// Always null: a writer hands nothing out.
    SP<BSmartObj> TakeOut(char const* name) override;
    /// Always null.
    SP<BSmartObj> QueryObject(void* reference) const override;
    /// Always 0.
    unsigned long long ReadMemoryBlock(void* buffer, unsigned long long size) override;
    /// Takes n bytes for the file; 0 for n = 0 or a closed file. A failure shows in IsGood.
    unsigned long long WriteMemoryBlock(void const* buffer, unsigned long long size) override;
    /// Always true.
    bool VerifyObjects() override;
    /// Always 0: a stream refers to objects by place, not by number.
    unsigned int MapPointerToIndex(void* object) override;
    /// Always false.
    bool Force64bitFormat() const override;

    /// The path given to the constructor.
    WString Path() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};
