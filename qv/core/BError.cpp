#include <qv/core/BError.h>
#include <utility>

QV_REGISTER_CLASSNAME(BError);

BError::BError(int code) : m_error(code) {}

BError::BError(int code, char16_t const* a0, char16_t const* a1, char16_t const* a2,
               char16_t const* a3)
    : m_error(code), m_arguments{WString(a0), WString(a1), WString(a2), WString(a3)} {}

BError::BError(int code, WString a0, WString a1, WString a2, WString a3)
    : m_error(code), m_arguments{std::move(a0), std::move(a1), std::move(a2), std::move(a3)} {}

BError::BError(BError const& other)
    : BSmartObj(other),
      m_error(other.m_error), m_arguments{other.m_arguments[0], other.m_arguments[1],
                                          other.m_arguments[2], other.m_arguments[3]} {}

BError::~BError() = default;

BError& BError::operator=(BError const& other) {
    // Through the virtual accessors, so that a derived error assigns what it reports.
    m_error = other.Error();
    for (int i = 0; i < 4; ++i)
        m_arguments[i] = other.Argument(i);
    return *this;
}

BError& BError::operator=(int code) {
    m_error = code;
    return *this;
}

int BError::Error() const {
    return m_error;
}

WString BError::Argument(int i) const {
    return i >= 0 && i < 4 ? m_arguments[i] : WString();
}

void BError::Throw() const {
    throw BError(*this);
}

bool BError::IsFailure() const {
    return Error() != 0;
}

void BError::Check(BError& e) const {
    if (e.Error() != 0)
        throw BError(e);
}

void BError::Check(int code) const {
    if (code == 0)
        return;
    BError copy(*this);
    copy.m_error = code;
    throw copy;
}

void BError::Check(bool ok, int code, WString a0, WString a1) {
    if (!ok)
        throw BError(code, std::move(a0), std::move(a1));
}

void BError::Condition(bool ok, WString a0, WString a1) {
    if (!ok)
        throw BError(kGeneralFailure, std::move(a0), std::move(a1));
}

void BError::Test(int code, WString a0, WString a1) {
    if (code != 0)
        throw BError(code, std::move(a0), std::move(a1));
}
