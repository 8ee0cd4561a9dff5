/// \file
/// BArchive: the abstract store that a storable class talks to. docs/archives.md shows how a
/// storable class uses it and tells the stored forms.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/persistence/BReadObjCallbackMap.h>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

static_assert(std::endian::native == std::endian::little,
              "archives store the memory image of values, which the file formats fix as "
              "little-endian");

/// Thrown by value when a narrow string cannot be read (its tag is missing or wrong). The
/// prefix reader and the archive's header check catch it and count the file as invalid; a read
/// function that streams strings itself lets it pass to them.
enum ARCHIVE_EXCEPTION { ARCHIVE_BAD_STRING = 1 };

class BIStreamArchive;

/// Two kinds stand behind it: the object archive BQuorvelArchive, a random-access file of
/// object records, and the stream archives BIStreamArchive and BOStreamArchive, which read and
/// write one object graph in sequence. A class writes its fields with the streaming operators,
/// its references with the reference forms (the only place where the kinds differ for it)
/// and its object head with BSmartObj::WritePrefix. Failures mostly show as state: a read on an
/// archive that is not good leaves its target as it was, and IsGood turns false. An archive
/// belongs to one thread at a time; nothing in it is locked.
class QV_EXPORT BArchive : public BSmartObj {
public:
    /// Whether the archive is read or written.
    enum MODE { READ = 0, WRITE = 1 };

    /// @name Construction and copy hold nothing of their own.
    ///@{
    BArchive() = default;
    BArchive(BArchive const& other) : BSmartObj(other) {}
    ///@}

    /// The format version of the archive, not of an object.
    int Version() const override = 0;

    // The virtual operations in the order of their slots.
    /// Raises the archive's error as a BError, for a caller that wants an exception.
    virtual void ThrowError() const = 0;
    /// The archive is open and has no error state.
    virtual bool IsGood() const = 0;
    virtual MODE Mode() const = 0;
    /// Hands an object over for storage under name (null for an object reached by reference):
    /// the object archive queues it, holding a reference; a stream writer writes it at once.
    /// The stream archives throw a BError where they cannot take it (a reader; a writer that
    /// is not good).
    virtual void Insert(BSmartObj* object, char const* name) = 0;
    /// Gets an object out: the one stored under name, or for a stream reader the next one. A
    /// new reference; null when there is none or it cannot be built.
    virtual SP<BSmartObj> TakeOut(char const* name) = 0;
    /// The object already loaded for a reference number, or null (always on a stream).
    virtual SP<BSmartObj> QueryObject(void* reference) const = 0;
    /// Reads up to size bytes into buffer; returns how many came (fewer at the end or on an
    /// error).
    virtual unsigned long long ReadMemoryBlock(void* buffer, unsigned long long size) = 0;
    /// Writes size bytes; returns how many were written.
    virtual unsigned long long WriteMemoryBlock(void const* buffer, unsigned long long size) = 0;
    /// Asks the loaded objects whether they are sound (BSmartObj::VerifyObj); false when one
    /// is not. Stream archives answer true.
    virtual bool VerifyObjects() = 0;
    /// The reference number of an object on writing; 0 stands for null, and a stream archive
    /// answers 0 for every object.
    virtual unsigned int MapPointerToIndex(void* object) = 0;
    /// False for every archive of this library; nothing consults it.
    virtual bool Force64bitFormat() const = 0;

    /// @name Plain values travel as their memory image, sizeof(T) bytes, little-endian,
    /// without tag or alignment. Writing goes through WriteMemoryBlock. Reading happens only
    /// in read mode on a good archive; otherwise the target stays as it was. long is refused
    /// at compile time: it is 4 bytes in the files that Windows writes and 8 here, so a field
    /// must name its width: std::int32_t for 32 bits, long long for 64 (std::int64_t is a long
    /// on this platform). Both return the archive, for chaining.
    ///@{
    template <class T>
    BArchive& operator<<(T const& value) {
        CheckPlain<T>();
        if (!PutInWindow(&value, sizeof(T)))
            WriteMemoryBlock(&value, sizeof(T));
        return *this;
    }
    template <class T>
    BArchive& operator>>(T& value) {
        CheckPlain<T>();
        if (!TakeFromWindow(&value, sizeof(T)) && Mode() == READ && IsGood())
            ReadMemoryBlock(&value, sizeof(T));
        return *this;
    }
    ///@}

    /// Reads a narrow string as operator>> does and drops it, without making the string: for
    /// fields that a newer form no longer uses. Throws ARCHIVE_BAD_STRING as operator>> does.
    void SkipString();

    /// Reads a WString as operator>> does. A short text equal to one that this thread read
    /// this way shortly before gets that text's block instead of a block of its own: names
    /// repeat throughout a large tree, and a block that copy-on-write strings share reads the
    /// same as one of their own. Fails as operator>> does.
    void ReadSharedText(WString& value);

    /// True when reading is possible: read mode on a good archive.
    bool CanRead() const { return Mode() == READ && IsGood(); }

    /// True when the reference forms leave fields null while reading and fill them in
    /// UpdateAssociations (the object archive); false when they deliver objects at once.
    bool ResolvesLater() const { return IsObjectArchive(); }

    /// The first read function registered under exactly this class name (case counts), or
    /// null.
    static NArchive::ReadFunction SmartObjReadFunction(BString className);

    /// @name Reference forms
    /// A field that refers to another object is stored as the object's reference number, 0
    /// for null. The forms serve SP<T> fields of any storable T, BSmartObj as a virtual base
    /// included, and plain T * fields for references that do not own (a node's parent). A
    /// read function reads with the Read forms; UpdateAssociations, once every object of the
    /// load exists, puts the objects in with the Resolve forms.
    ///
    /// A field under load never holds a number: it stays null, and the archive keeps the
    /// number beside it, with the field's address, until the resolve form replaces it by the
    /// object (null for a number that finds nothing or an object of another type). So a load
    /// given up half-way releases nothing that is not an object. The resolve forms serve the
    /// object whose UpdateAssociations runs; a field that its read function did not read
    /// through the archive is left alone.
    ///
    /// Lists are DLists or have their shape: Count(), RemoveAll(), AddTail(value), walkable by
    /// range-for, with elements that keep their addresses while the list lives.
    ///
    /// On a stream archive the object is written in place of its number: WriteObjectRef is
    /// Insert(object, nullptr) on the writer, which writes the flag and, for an object, the
    /// object itself; ReadObjectRef is the reader's next object, converted to the field's
    /// type, and the resolve forms find nothing to do. The list forms keep their count in
    /// front. WriteIndex writes the number 0 there, ReadIndex reads it and leaves the field
    /// null: a stream has no numbers.
    ///
    /// On an archive that is neither an object archive nor a stream archive, the object and
    /// list forms do nothing; WriteIndex and ReadIndex() work on every archive.
    ///@{
    /// The number only, 4 bytes up to format 6 and 8 bytes from 7 on; the object is not
    /// stored because of it.
    template <class P>
    void WriteIndex(P const& pointer) {
        WriteNumber(Number(SmartPart(pointer)));
    }
    /// The number, and a non-null object is queued for storage.
    template <class P>
    void WriteObjectRef(P const& object) {
        WriteRef(SmartPart(object));
    }
    /// The count as 4 bytes, then WriteObjectRef of each element.
    template <class List>
    void WriteObjectList(List const& list);

    /// The number, in the width of WriteIndex; 0 when it cannot be read.
    unsigned long long ReadIndex();
    /// A plain reference: the field is set null and its number noted; nothing is loaded.
    template <class T>
    void ReadIndex(T*& field) {
        field = nullptr;
        ReadRef(&field, false);
    }
    /// The field is set null, its number noted and its object queued for loading; on a stream
    /// reader it is the next object at once.
    template <class T>
    void ReadObjectRef(SP<T>& field) {
        field = nullptr;
        if (BIStreamArchive* stream = StreamReader()) {
            bool ended = false;
            field = ReadInPlace(stream, ended);
            return;
        }
        ReadRef(&field, true);
    }
    /// The count, then one element per stored number, never more elements than the source
    /// really holds; the list's old elements go.
    template <class List>
    void ReadObjectList(List& list);

    /// @name Resolving
    /// In UpdateAssociations: each puts the object of the noted number into the field.
    ///@{
    /// The plain field borrows the object, which the archive keeps alive.
    template <class T>
    void ResolveIndex(T*& field) {
        bool noted = false;
        SP<BSmartObj> object = Resolve(&field, noted);
        if (noted)
            field = SP<T>(object).get(); // the archive keeps the object alive
    }
    template <class T>
    void ResolveObjectRef(SP<T>& field) {
        bool noted = false;
        SP<BSmartObj> object = Resolve(&field, noted);
        if (noted)
            field = std::move(object);
    }
    /// Returns how many elements stayed null, so that an owner that wants no null entries
    /// knows whether it has to walk its list once more.
    template <class List>
    std::size_t ResolveObjectList(List& list) {
        std::size_t nulls = 0;
        for (auto& element : list) {
            ResolveObjectRef(element);
            nulls += element ? 0 : 1;
        }
        return nulls;
    }
    ///@}

protected:
    /// Reads a reference number in the width of the format; false if the source had fewer
    /// bytes than the width.
    bool ReadNumber(unsigned long long& number);

    /// @name Windows into a buffer of the concrete archive
    /// Bytes it has read ahead, or room it has for bytes to write. A value that fits is copied
    /// there without the virtual calls of the general path, which is taken when the window is
    /// empty or too small; that path refills or drains the buffer and may open the window
    /// again. An archive opens a window only where its ReadMemoryBlock or WriteMemoryBlock
    /// would do nothing but copy, so either way gives the same bytes; the read window is open
    /// only while reading is possible. Null pointers close a window.
    ///@{
    unsigned char const* m_readNext = nullptr;
    unsigned char const* m_readEnd = nullptr;
    unsigned char* m_writeNext = nullptr;
    unsigned char* m_writeEnd = nullptr;
    ///@}

private:
    // The units of a WString whose count was read, as operator>> reads them.
    void ReadUnitsOf(std::int32_t count, WString& value);
    bool TakeFromWindow(void* buffer, std::size_t size) {
        if (static_cast<std::size_t>(m_readEnd - m_readNext) < size)
            return false;
        std::memcpy(buffer, m_readNext, size);
        m_readNext += size;
        return true;
    }
    bool PutInWindow(void const* buffer, std::size_t size) {
        if (static_cast<std::size_t>(m_writeEnd - m_writeNext) < size)
            return false;
        std::memcpy(m_writeNext, buffer, size);
        m_writeNext += size;
        return true;
    }
    // ReadMemoryBlock and WriteMemoryBlock through the windows.
    unsigned long long ReadBytes(void* buffer, unsigned long long size) {
        return TakeFromWindow(buffer, size) ? size : ReadMemoryBlock(buffer, size);
    }
    unsigned long long WriteBytes(void const* buffer, unsigned long long size) {
        return PutInWindow(buffer, size) ? size : WriteMemoryBlock(buffer, size);
    }

    template <class T>
    static BSmartObj* SmartPart(T* pointer) {
        // The implicit conversion finds the BSmartObj part also through a virtual base, and
        // keeps null null.
        return const_cast<BSmartObj*>(static_cast<BSmartObj const*>(pointer));
    }
    template <class T>
    static BSmartObj* SmartPart(SP<T> const& pointer) {
        return SmartPart(pointer.get());
    }

    unsigned long long Number(BSmartObj* object);
    void WriteNumber(unsigned long long number);
    void WriteRef(BSmartObj* object);
    void ReadRef(void* field, bool load);
    // On an object archive only: the number of a list element under load.
    void NoteListElement(void* field, unsigned long long number);
    bool IsObjectArchive() const;
    // Which kind of archive the reference forms meet; the stream reader or writer, or null.
    BIStreamArchive* StreamReader();
    bool IsStreamWriter() const;
    // The reader's next object for a reference; ended when not even its flag could be read.
    static SP<BSmartObj> ReadInPlace(BIStreamArchive* stream, bool& ended);
    SP<BSmartObj> Resolve(void* field, bool& noted);

    template <class T>
    static constexpr void CheckPlain() {
        static_assert(std::is_trivially_copyable_v<T>, "only plain values stream as bytes");
        static_assert(!std::is_same_v<T, long> && !std::is_same_v<T, unsigned long>,
                      "long has another width on Windows; stream std::int32_t, or long long "
                      "for 64 bits (std::int64_t is long here and is refused as well)");
    }
};

/// A narrow string: the tag byte 'S', the length as 4 bytes, the bytes without terminator. A
/// string of 2^32 bytes or more throws BError 32767 instead of being cut.
template <>
BArchive& BArchive::operator<<(BString const& value);
/// The same form from text that is not held in a BString, such as a number's digits.
template <>
BArchive& BArchive::operator<<(std::string_view const& value);
/// Throws ARCHIVE_BAD_STRING when the tag is missing or wrong, whatever the mode (a closed
/// archive yields nothing and so throws). A short read is not reported: the rest of the
/// string stays blanks (for a damaged long length, at most twice the bytes that came).
template <>
BArchive& BArchive::operator>>(BString& value);
/// A wide string: the count as 4 signed bytes, then UTF-16LE units, no tag, no terminator. A
/// string of 2^31 units or more throws BError 32767.
template <>
BArchive& BArchive::operator<<(WString const& value);
/// A count of 0 or below, or a short read, gives the empty string; nothing is thrown.
template <>
BArchive& BArchive::operator>>(WString& value);

template <class List>
void BArchive::WriteObjectList(List const& list) {
    if (!IsObjectArchive() && !IsStreamWriter())
        return;
    *this << static_cast<std::int32_t>(list.Count());
    for (auto const& element : list)
        WriteObjectRef(element);
}

template <class List>
void BArchive::ReadObjectList(List& list) {
    if (BIStreamArchive* stream = StreamReader()) {
        std::int32_t count = 0;
        *this >> count;
        list.RemoveAll();
        // Elements are appended as they arrive, and the list ends where the file does: a
        // damaged count must not make us append billions of nulls.
        using Element = std::remove_cvref_t<decltype(*list.begin())>;
        for (std::int32_t i = 0; i < count; ++i) {
            bool ended = false;
            Element element = ReadInPlace(stream, ended);
            if (ended)
                break;
            list.AddTail(element);
        }
        return;
    }
    if (!IsObjectArchive())
        return;
    std::int32_t count = 0;
    *this >> count;
    // The numbers are read before the list grows, and only as many as the source really
    // holds: a damaged count must not make us append billions of elements.
    std::vector<unsigned long long> numbers;
    unsigned long long number = 0;
    for (std::int32_t i = 0; i < count && ReadNumber(number); ++i)
        numbers.push_back(number);
    list.RemoveAll();
    for (std::size_t i = 0; i < numbers.size(); ++i)
        list.AddTail(nullptr);
    std::size_t i = 0;
    for (auto& element : list)
        NoteListElement(&element, numbers[i++]);
}
