/// \file
/// BVarMemBlock: a variant holding a copy of a block of bytes (type code 4). Its value part is
/// the 32-bit size, the size's bitwise complement, then the bytes.
#pragma once

#include <memory>
#include <qv/profiles/BVariant.h>

class QV_EXPORT BVarMemBlock : public BVariant {
public:
    /// Copies \p size bytes from \p data; with size 0 it holds no block.
    BVarMemBlock(void const* data = nullptr, std::uint32_t size = 0);

    std::uint32_t GetTypeCode() const override { return kMemBlock; }
    /// Reads size and complement; when they match, the block. A wrong complement leaves the
    /// object empty and the file behind the eight bytes; a block cut short leaves it empty.
    void ReadValue(std::FILE* file) override;
    void WriteValue(std::FILE* file) override;

    void const* Data() const { return m_data.get(); }
    std::uint32_t Size() const { return m_size; }

private:
    std::unique_ptr<unsigned char[]> m_data;
    std::uint32_t m_size = 0;
};
