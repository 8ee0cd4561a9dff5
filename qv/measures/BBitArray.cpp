// The data is one block from calloc, so that a new plane of millions of pixels costs no pass
// to clear it: the system hands out zeroed pages. Whole-plane operations work on 64-bit words:
// with one byte to a pixel, plane p of eight pixels is bit p of each byte of a word, so a
// mask of 0x01 bytes shifted by p selects them, and the sum of the masked bytes counts them.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#ifdef __SSE2__
#include <emmintrin.h>
#endif
#include <qv/measures/BBitArray.h>
#include <qv/measures/BRect.h>
#include <qv/persistence/BArchive.h>

QV_REGISTER_CLASSNAME(BBitArray);

// Bit planes load from archives from the start, before the application registers its own
// classes.
[[maybe_unused]] static bool const registered =
    (RegisterArchiveCallback(BBitArray::CLASSNAME(), &BBitArray::Read), true);

namespace {

constexpr std::uint64_t kLowBits = 0x0101010101010101ull;
// Bytes read from an archive at a time: a damaged size asks for more than the record holds,
// and the data grows only as the bytes come.
constexpr std::size_t kReadChunk = std::size_t{1} << 22;

int PixelBytes(int planes) {
    return qv::detail::Wrap32((planes + 7ll) / 8);
}

unsigned char* NewData(std::size_t bytes) {
    if (bytes == 0)
        return nullptr;
    void* data = std::calloc(bytes, 1);
    if (!data)
        throw std::bad_alloc();
    return static_cast<unsigned char*>(data);
}

// The sum of the bytes of a word whose bytes are at most 8 each... up to 255 each, as long as
// the total fits: the lanes are added pairwise, then in one multiplication.
std::uint64_t SumOfBytes(std::uint64_t lanes) {
    std::uint64_t const pairs =
        (lanes & 0x00FF00FF00FF00FFull) + ((lanes >> 8) & 0x00FF00FF00FF00FFull);
    return (pairs * 0x0001000100010001ull) >> 48;
}

} // namespace

BBitArray::BBitArray(int planes, int width, int height)
    : m_width(width), m_height(height), m_pixel_bytes(PixelBytes(planes)) {
    m_data = NewData(DataBytes());
}

BBitArray::BBitArray(unsigned char* data, int width, int height, int pixelBytes)
    : m_data(data), m_width(width), m_height(height), m_pixel_bytes(pixelBytes) {}

BBitArray::BBitArray(BBitArray const& other)
    : B2DArrayBase(other), m_width(other.m_width), m_height(other.m_height),
      m_pixel_bytes(other.m_pixel_bytes) {
    std::size_t const bytes = DataBytes();
    m_data = NewData(bytes);
    if (bytes > 0)
        std::memcpy(m_data, other.m_data, bytes);
}

BBitArray& BBitArray::operator=(BBitArray const& other) {
    if (this != &other) {
        std::size_t const bytes = other.DataBytes();
        unsigned char* data = NewData(bytes);
        if (bytes > 0)
            std::memcpy(data, other.m_data, bytes);
        std::free(m_data);
        m_data = data;
        m_width = other.m_width;
        m_height = other.m_height;
        m_pixel_bytes = other.m_pixel_bytes;
    }
    return *this;
}

BBitArray::~BBitArray() {
    std::free(m_data);
}

std::size_t BBitArray::DataBytes(int width, int height, int pixelBytes) {
    if (width < 1 || height < 1 || pixelBytes < 1)
        return 0;
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(static_cast<std::size_t>(width), static_cast<std::size_t>(height),
                               &bytes) ||
        __builtin_mul_overflow(bytes, static_cast<std::size_t>(pixelBytes), &bytes))
        throw std::bad_alloc();
    return bytes;
}

void BBitArray::SetAllBits() {
    if (m_data)
        std::memset(m_data, 0xFF, DataBytes());
}

void BBitArray::UnsetAllBits() {
    if (m_data)
        std::memset(m_data, 0, DataBytes());
}

void BBitArray::ChangePlane(int plane, bool value) {
    if (!m_data)
        return;
    std::size_t const bytes = DataBytes();
    auto const bit = static_cast<unsigned char>(1u << (plane & 7));
    unsigned char* p = m_data + (plane >> 3);
    unsigned char* const end = m_data + bytes;
    if (m_pixel_bytes == 1) {
        std::uint64_t const mask = kLowBits * bit;
        for (; p + 8 <= end; p += 8) {
            std::uint64_t word;
            std::memcpy(&word, p, 8);
            word = value ? word | mask : word & ~mask;
            std::memcpy(p, &word, 8);
        }
    }
    for (; p < end; p += m_pixel_bytes)
        *p = static_cast<unsigned char>(value ? *p | bit : *p & ~bit);
}

unsigned long long BBitArray::CountBits(int plane) const {
    if (!m_data)
        return 0;
    std::size_t const bytes = DataBytes();
    int const shift = plane & 7;
    unsigned char const* p = m_data + (plane >> 3);
    unsigned char const* const end = m_data + bytes;
    unsigned long long count = 0;
    if (m_pixel_bytes == 1) {
#ifdef __SSE2__
        // Sixteen byte lanes in each of two registers, summed by psadbw before they can
        // overflow.
        __m128i const ones = _mm_set1_epi8(1);
        __m128i const bitShift = _mm_cvtsi32_si128(shift);
        while (p + 32 <= end) {
            __m128i lanes0 = _mm_setzero_si128(), lanes1 = _mm_setzero_si128();
            for (int i = 0; i < 255 && p + 32 <= end; ++i, p += 32) {
                __m128i const a = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p));
                __m128i const b = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p + 16));
                lanes0 = _mm_add_epi8(lanes0, _mm_and_si128(_mm_srl_epi16(a, bitShift), ones));
                lanes1 = _mm_add_epi8(lanes1, _mm_and_si128(_mm_srl_epi16(b, bitShift), ones));
            }
            __m128i const sums = _mm_add_epi64(_mm_sad_epu8(lanes0, _mm_setzero_si128()),
                                               _mm_sad_epu8(lanes1, _mm_setzero_si128()));
            count +=
                static_cast<unsigned long long>(_mm_cvtsi128_si64(sums)) +
                static_cast<unsigned long long>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(sums, sums)));
        }
#endif
        // Each lane counts up to 255 pixels before the lanes are summed.
        while (p + 8 <= end) {
            std::uint64_t lanes = 0;
            for (int i = 0; i < 255 && p + 8 <= end; ++i, p += 8) {
                std::uint64_t word;
                std::memcpy(&word, p, 8);
                lanes += (word >> shift) & kLowBits;
            }
            count += SumOfBytes(lanes);
        }
    }
    for (; p < end; p += m_pixel_bytes)
        count += (*p >> shift) & 1u;
    return count;
}

void BBitArray::ChangeExtent(int x, int y, int width, int height) {
    BRect const old(0, 0, m_width, m_height);
    BRect const r = old.Intersection(BRect(x, y, 1ll * x + width, 1ll * y + height));
    unsigned char* data = NewData(DataBytes(width, height, m_pixel_bytes));
    if (data && m_data && !r.IsEmpty()) {
        std::size_t const rowBytes = static_cast<std::size_t>(r.Width()) * m_pixel_bytes;
        for (int row = r.top; row < r.bottom; ++row) {
            std::size_t const from =
                (static_cast<std::size_t>(m_width) * row + r.left) * m_pixel_bytes;
            std::size_t const to =
                (static_cast<std::size_t>(width) * (row - y) + (r.left - x)) * m_pixel_bytes;
            std::memcpy(data + to, m_data + from, rowBytes);
        }
    }
    std::free(m_data);
    m_data = data;
    m_width = width;
    m_height = height;
}

void BBitArray::WriteData(BArchive& archive) const {
    archive << m_width << m_height << m_pixel_bytes;
    if (m_data)
        archive.WriteMemoryBlock(m_data, DataBytes());
}

SP<BSmartObj> BBitArray::Read(BArchive& archive, int) {
    int width = 0, height = 0, pixelBytes = 0;
    archive >> width >> height >> pixelBytes;
    if (!archive.CanRead())
        return nullptr;
    std::size_t bytes = 0;
    try {
        bytes = DataBytes(width, height, pixelBytes);
    } catch (std::bad_alloc const&) {
        return nullptr; // sizes no file can hold
    }
    unsigned char* data = nullptr;
    for (std::size_t done = 0; done < bytes;) {
        std::size_t const chunk = bytes - done < kReadChunk ? bytes - done : kReadChunk;
        auto* grown = static_cast<unsigned char*>(std::realloc(data, done + chunk));
        if (!grown || archive.ReadMemoryBlock(grown + done, chunk) != chunk) {
            std::free(grown ? grown : data);
            return nullptr;
        }
        data = grown;
        done += chunk;
    }
    return SP<BSmartObj>(new BBitArray(data, width, height, pixelBytes));
}
