// An archive in memory, for the byte images of the streamed forms. Its version and state are
// set by the test; references map to numbers in the order they are met.
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <qv/persistence/BArchive.h>
#include <string>

class MemoryArchive : public BArchive {
public:
    explicit MemoryArchive(std::string bytes = {}, MODE mode = READ, int version = 8)
        : m_bytes(std::move(bytes)), m_mode(mode), m_version(version) {}

    int Version() const override { return m_version; }
    void ThrowError() const override { throw 0; }
    bool IsGood() const override { return m_good; }
    MODE Mode() const override { return m_mode; }
    void Insert(BSmartObj*, char const*) override {}
    SP<BSmartObj> TakeOut(char const*) override { return nullptr; }
    SP<BSmartObj> QueryObject(void*) const override { return nullptr; }
    unsigned long long ReadMemoryBlock(void* buffer, unsigned long long size) override {
        unsigned long long n = std::min<unsigned long long>(size, m_bytes.size() - m_read);
        std::memcpy(buffer, m_bytes.data() + m_read, n);
        m_read += n;
        return n;
    }
    unsigned long long WriteMemoryBlock(void const* buffer, unsigned long long size) override {
        m_bytes.append(static_cast<char const*>(buffer), size);
        return size;
    }
    bool VerifyObjects() override { return true; }
    unsigned int MapPointerToIndex(void* object) override {
        if (!object)
            return 0;
        return m_indexes.try_emplace(object, static_cast<unsigned int>(m_indexes.size() + 1))
            .first->second;
    }
    bool Force64bitFormat() const override { return false; }

    std::string const& Bytes() const { return m_bytes; }
    bool m_good = true;

private:
    std::string m_bytes;
    std::size_t m_read = 0;
    MODE m_mode;
    int m_version;
    std::map<void*, unsigned int> m_indexes;
};

// Bytes from a list of values, for writing expected images.
inline std::string Bytes(std::initializer_list<int> values) {
    std::string out;
    for (int v : values)
        out.push_back(static_cast<char>(v));
    return out;
}
