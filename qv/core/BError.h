/// \file
/// BError: the one exception type of the library, thrown by value, and the stored form of a
/// failure. It holds a code, which is the id of a string-table entry, and four text arguments
/// that are plain text or translation keys (a leading '$'). The library never shows an error;
/// the application turns it into words.
#pragma once

#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>

/// A code and four arguments, nothing else. Thrown only by value and always as exactly this
/// class: catch it as BError, keep a copy to store it (the copy shares the argument strings).
/// Not storable in archives. Not locked: an error shared between threads is guarded by its
/// holder.
class QV_EXPORT BError : public BSmartObj {
public:
    /// The code and four empty arguments. Not explicit, so that a code can stand wherever an
    /// error is expected; 0 means no error.
    BError(int code = 0);
    /// The code and up to four texts; a null pointer gives an empty argument.
    BError(int code, char16_t const* a0, char16_t const* a1 = nullptr, char16_t const* a2 = nullptr,
           char16_t const* a3 = nullptr);
    /// The code and up to four strings.
    BError(int code, WString a0, WString a1 = WString(), WString a2 = WString(),
           WString a3 = WString());
    /// Copies code and arguments; the copy is a new smart object with a count of 0.
    BError(BError const& other);
    ~BError() override;

    // The virtual operations in the order of their slots.
    /// Takes the code from other's Error() and each argument from its Argument(i), so that a
    /// derived error assigns what it reports.
    virtual BError& operator=(BError const& other);
    /// The code; 0 means no error.
    virtual int Error() const;
    /// Argument \p i, or an empty string for \p i outside 0 to 3.
    virtual WString Argument(int i) const;
    /// Throws a copy of this error by value.
    virtual void Throw() const;
    /// True when Error() is not 0.
    virtual bool IsFailure() const;
    /// Throws a copy of \p e unless its code is 0.
    virtual void Check(BError& e) const;
    /// Throws a copy of this error bearing \p code and this error's arguments, unless \p code
    /// is 0; this object stays as it is.
    virtual void Check(int code) const;

    /// Sets the code only; the arguments stay.
    BError& operator=(int code);

    /// @name Raising in one line. Each throws BError(code, a0, a1) with empty arguments 2 and
    /// 3 when its test fails, and does nothing otherwise.
    ///@{
    /// Throws \p code when \p ok is false.
    static void Check(bool ok, int code, WString a0 = WString(), WString a1 = WString());
    /// Throws kGeneralFailure when \p ok is false.
    static void Condition(bool ok, WString a0 = WString(), WString a1 = WString());
    /// Throws \p code when it is not 0.
    static void Test(int code, WString a0 = WString(), WString a1 = WString());
    ///@}

    /// @name The codes this library raises itself, each with its string-table key.
    ///@{
    /// Narrowing overflow (argument 0 names the function), a failed Condition, an archive that
    /// cannot go on, a profile opened in the wrong mode, a registry key that cannot be had.
    static constexpr int kGeneralFailure = 32767; // "$ERR_ERROR"
    /// A stream archive failed; argument 0 names the archive class.
    static constexpr int kArchiveFileError = 31182; // "$ERR_ARCHIVE_FILE_ERROR"
    /// Memory could not be had; argument 0 is the system's text or a hint key.
    static constexpr int kMemoryAllocFailed = 25021; // "$ERR_MEM_ALLOC_FAILED"
    /// The user stopped a running operation; no arguments.
    static constexpr int kUserStopsFunction = 25070; // "$ERR_USER_STOPS_FUNCTION"
    ///@}

private:
    int m_error;
    WString m_arguments[4];
};
