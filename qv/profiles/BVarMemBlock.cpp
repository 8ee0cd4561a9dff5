#include <cstring>
#include <qv/profiles/BVarMemBlock.h>

namespace {

// What is left of the file behind the current position, so that a size field that lies about
// a short file costs no memory the file does not hold.
long long BytesLeft(std::FILE* file) {
    long long here = std::ftell(file);
    if (here < 0 || std::fseek(file, 0, SEEK_END) != 0)
        return 0;
    long long end = std::ftell(file);
    std::fseek(file, here, SEEK_SET);
    return end - here;
}

} // namespace

BVarMemBlock::BVarMemBlock(void const* data, std::uint32_t size) : m_size(size) {
    if (size == 0)
        return;
    m_data = std::make_unique<unsigned char[]>(size);
    std::memcpy(m_data.get(), data, size);
}

void BVarMemBlock::ReadValue(std::FILE* file) {
    if (!file)
        return;
    m_data.reset();
    m_size = 0;
    std::uint32_t header[2];
    if (std::fread(header, sizeof header, 1, file) != 1 || header[1] != ~header[0])
        return;
    std::uint32_t size = header[0];
    if (size > BytesLeft(file)) {
        std::fseek(file, 0, SEEK_END); // the block ends early: nothing of it is kept
        return;
    }
    auto block = size ? std::make_unique<unsigned char[]>(size) : nullptr;
    if (size && std::fread(block.get(), 1, size, file) != size)
        return;
    m_data = std::move(block);
    m_size = size;
}

void BVarMemBlock::WriteValue(std::FILE* file) {
    if (!file)
        return;
    std::uint32_t header[2] = {m_size, ~m_size};
    std::fwrite(header, sizeof header, 1, file);
    if (m_size)
        std::fwrite(m_data.get(), 1, m_size, file);
}
