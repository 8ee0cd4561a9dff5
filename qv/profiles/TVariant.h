/// \file
/// TVariant<T>: a variant holding one value of type T: int (code 1), BString (2, only ever read
/// from a file), double (3), bool (5) or WString (6). Numbers go to the file as their
/// little-endian image, strings in the binary string record.
#pragma once

#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <qv/profiles/BVariant.h>
#include <type_traits>

template <class T>
class TVariant : public BVariant {
    static_assert(std::is_same_v<T, int> || std::is_same_v<T, double> || std::is_same_v<T, bool> ||
                      std::is_same_v<T, BString> || std::is_same_v<T, WString>,
                  "a binary profile stores int, double, bool, BString and WString");

public:
    explicit TVariant(T value = T()) : m_value(value) {}

    std::uint32_t GetTypeCode() const override {
        if constexpr (std::is_same_v<T, int>)
            return kInt;
        else if constexpr (std::is_same_v<T, BString>)
            return kNarrowString;
        else if constexpr (std::is_same_v<T, double>)
            return kDouble;
        else if constexpr (std::is_same_v<T, bool>)
            return kBool;
        else
            return kWideString;
    }

    void ReadValue(std::FILE* file) override {
        if (!file)
            return;
        if constexpr (std::is_same_v<T, BString> || std::is_same_v<T, WString>) {
            if (!m_value.FRead(file))
                m_value = T();
        } else {
            // Fixed-size values: a part the file cuts short reads as zero.
            std::conditional_t<std::is_same_v<T, bool>, unsigned char, T> raw{};
            if (std::fread(&raw, sizeof raw, 1, file) != 1)
                raw = {};
            m_value = static_cast<T>(raw);
        }
    }

    void WriteValue(std::FILE* file) override {
        if (!file)
            return;
        if constexpr (std::is_same_v<T, BString> || std::is_same_v<T, WString>) {
            m_value.FWrite(file);
        } else {
            std::conditional_t<std::is_same_v<T, bool>, unsigned char, T> raw = m_value;
            std::fwrite(&raw, sizeof raw, 1, file);
        }
    }

    T const& Value() const { return m_value; }

private:
    T m_value;
};

// Made once, in the library.
extern template class QV_EXPORT TVariant<int>;
extern template class QV_EXPORT TVariant<double>;
extern template class QV_EXPORT TVariant<bool>;
extern template class QV_EXPORT TVariant<BString>;
extern template class QV_EXPORT TVariant<WString>;
