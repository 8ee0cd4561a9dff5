/// \file
/// BQuorvelArchive: the object archive file. docs/archives.md tells the file format and the
/// decisions behind the tables.
#pragma once

#include <memory>
#include <qv/core/Export.h>
#include <qv/persistence/BArchive.h>

/// It stores an object graph as a sequence of records and gets any part of it out again by name
/// or by the hexadecimal id of a record. An object that several others refer to is written
/// once and loaded once; references in the file are numbers, resolved in a second phase once
/// every object of a load exists, so cycles do no harm. A failure throws nothing: the archive
/// is then not good, and reads and writes do nothing. An archive belongs to one thread at a
/// time; the objects it hands out are the caller's to share.
class QV_EXPORT BQuorvelArchive : public BArchive {
public:
    QV_DECLARE_CLASSNAME(BQuorvelArchive)

    /// WRITE creates the file and writes the header; any other mode opens the file for reading
    /// and checks it against name (in the "class X" form) and the lowest acceptable application
    /// version, then learns where each record lies. A missing file, a foreign or damaged
    /// header or a damaged record list leaves the archive not good; nothing is thrown.
    BQuorvelArchive(char16_t const* path, MODE mode, BString name, int version);
    /// Writes what was inserted and not yet flushed, then closes the file. An exception from a
    /// class's WriteData is lost here, and the file then holds a record that readers refuse.
    ~BQuorvelArchive() override;
    BQuorvelArchive(BQuorvelArchive const&) = delete;
    BQuorvelArchive& operator=(BQuorvelArchive const&) = delete;

    /// The format version: 8 when writing, the file's when reading.
    int Version() const override;

    /// Throws BError 32767 with the key "$IDS_ErrorHint16".
    void ThrowError() const override;
    /// The file is open and its stream has reported no error.
    bool IsGood() const override;
    /// The mode given at construction.
    MODE Mode() const override;
    /// Queues an object for writing, holding a reference while the archive lives. The first insert
    /// of an object decides its name, and the first holder of a name keeps it; null and
    /// repeated calls have no effect.
    void Insert(BSmartObj* object, char const* name) override;
    /// Loads the object of a name or id with everything it refers to, resolves the references
    /// and verifies the loaded objects; a new reference. Null in write mode, for a null or
    /// empty or unknown key, an unreadable record, an unregistered class or an object that
    /// refuses verification.
    SP<BSmartObj> TakeOut(char const* name) override;
    /// The loaded object of a reference number; loads nothing. Null for 0 and for a number
    /// not loaded.
    SP<BSmartObj> QueryObject(void* reference) const override;
    /// @name Raw bytes: only in their own mode on a good archive, else 0 bytes move.
    ///@{
    unsigned long long ReadMemoryBlock(void* buffer, unsigned long long size) override;
    unsigned long long WriteMemoryBlock(void const* buffer, unsigned long long size) override;
    ///@}
    /// Asks every object loaded so far; false at the first that refuses.
    bool VerifyObjects() override;
    /// The number of an object on writing, by the address of its BSmartObj part: 0 for null,
    /// then 1, 2 ... in the order objects are first met.
    unsigned int MapPointerToIndex(void* object) override;
    /// False.
    bool Force64bitFormat() const override;

    /// Writes the records of everything inserted since the last call, and of what they refer
    /// to. False when not in write mode or not good; what a class's WriteData throws passes
    /// through.
    virtual bool Flush();

    /// Notes a key to load at the end of the running TakeOut; an empty key is ignored.
    void TakeOutLater(BString key);
    /// The path given at construction.
    WString Path() const;

private:
    friend class BArchive; // the reference forms keep their numbers here

    struct State;

    // The number read for a reference field under load, kept until the field is resolved.
    void NoteReference(void* field, unsigned long long number, bool load);
    // Hands out and forgets the number noted for a field; false if none is.
    bool TakeReference(void* field, unsigned long long& number);

    std::unique_ptr<State> m_state;
};
