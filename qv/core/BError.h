// BError: the one exception type of the library, thrown by value, and the stored form of a
// failure. It holds a code, which is the id of a string-table entry, and four text arguments
// that are plain text or translation keys (a leading '$'). The library never shows an error;
// the application turns it into words.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>

class QV_EXPORT BError : public BSmartObj {
public:
    // Converts from a bare code, so that a code can stand wherever an error is expected.
    BError(int code = 0);
    BError(int code, char16_t const* a0, char16_t const* a1 = nullptr, char16_t const* a2 = nullptr,
           char16_t const* a3 = nullptr);
    BError(int code, WString a0, WString a1 = WString(), WString a2 = WString(),
           WString a3 = WString());
    BError(BError const& other);
    ~BError() override;

    // The virtual operations in the order of their slots.
    virtual BError& operator=(BError const& other);
    virtual int Error() const;
    // Argument i, or an empty string for i outside 0 to 3.
    virtual WString Argument(int i) const;
    virtual void Throw() const;
    virtual bool IsFailure() const;
    // Throws a copy of e unless its code is 0.
    virtual void Check(BError& e) const;
    // Throws a copy of this error bearing code, unless code is 0; this object stays as it is.
    virtual void Check(int code) const;

    // Sets the code only; the arguments stay.
    BError& operator=(int code);

    static void Check(bool ok, int code, WString a0 = WString(), WString a1 = WString());
    static void Condition(bool ok, WString a0 = WString(), WString a1 = WString());
    static void Test(int code, WString a0 = WString(), WString a1 = WString());

    // The codes this library raises itself.
    static constexpr int kGeneralFailure = 32767;    // "$ERR_ERROR"
    static constexpr int kArchiveFileError = 31182;  // "$ERR_ARCHIVE_FILE_ERROR"
    static constexpr int kMemoryAllocFailed = 25021; // "$ERR_MEM_ALLOC_FAILED"
    static constexpr int kUserStopsFunction = 25070; // "$ERR_USER_STOPS_FUNCTION"

private:
    int m_error;
    WString m_arguments[4];
};
