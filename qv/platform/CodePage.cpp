#include "qv/platform/CodePage.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <type_traits>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

namespace qv::platform {

namespace {

std::mutex codePageMutex;
std::string codePageName = "windows-1252";
std::atomic<unsigned> codePageGeneration{0};

// Windows-1252's best-fit mappings: characters the code page lacks that WideCharToMultiByte
// without flags writes as a similar byte instead of '?' (Ā as A, ∞ as 8, the ideographic space
// as a space). Taken from what Windows answers for every BMP character; see
// docs/probes/bestfit_probe.cpp. Sorted by character.
struct BestFit {
    std::uint16_t unit;
    std::uint8_t byte;
};
constexpr BestFit bestFit1252[] = {
    {0x0100, 0x41}, {0x0101, 0x61}, {0x0102, 0x41}, {0x0103, 0x61}, {0x0104, 0x41}, {0x0105, 0x61},
    {0x0106, 0x43}, {0x0107, 0x63}, {0x0108, 0x43}, {0x0109, 0x63}, {0x010A, 0x43}, {0x010B, 0x63},
    {0x010C, 0x43}, {0x010D, 0x63}, {0x010E, 0x44}, {0x010F, 0x64}, {0x0110, 0xD0}, {0x0111, 0x64},
    {0x0112, 0x45}, {0x0113, 0x65}, {0x0114, 0x45}, {0x0115, 0x65}, {0x0116, 0x45}, {0x0117, 0x65},
    {0x0118, 0x45}, {0x0119, 0x65}, {0x011A, 0x45}, {0x011B, 0x65}, {0x011C, 0x47}, {0x011D, 0x67},
    {0x011E, 0x47}, {0x011F, 0x67}, {0x0120, 0x47}, {0x0121, 0x67}, {0x0122, 0x47}, {0x0123, 0x67},
    {0x0124, 0x48}, {0x0125, 0x68}, {0x0126, 0x48}, {0x0127, 0x68}, {0x0128, 0x49}, {0x0129, 0x69},
    {0x012A, 0x49}, {0x012B, 0x69}, {0x012C, 0x49}, {0x012D, 0x69}, {0x012E, 0x49}, {0x012F, 0x69},
    {0x0130, 0x49}, {0x0131, 0x69}, {0x0134, 0x4A}, {0x0135, 0x6A}, {0x0136, 0x4B}, {0x0137, 0x6B},
    {0x0139, 0x4C}, {0x013A, 0x6C}, {0x013B, 0x4C}, {0x013C, 0x6C}, {0x013D, 0x4C}, {0x013E, 0x6C},
    {0x0141, 0x4C}, {0x0142, 0x6C}, {0x0143, 0x4E}, {0x0144, 0x6E}, {0x0145, 0x4E}, {0x0146, 0x6E},
    {0x0147, 0x4E}, {0x0148, 0x6E}, {0x014C, 0x4F}, {0x014D, 0x6F}, {0x014E, 0x4F}, {0x014F, 0x6F},
    {0x0150, 0x4F}, {0x0151, 0x6F}, {0x0154, 0x52}, {0x0155, 0x72}, {0x0156, 0x52}, {0x0157, 0x72},
    {0x0158, 0x52}, {0x0159, 0x72}, {0x015A, 0x53}, {0x015B, 0x73}, {0x015C, 0x53}, {0x015D, 0x73},
    {0x015E, 0x53}, {0x015F, 0x73}, {0x0162, 0x54}, {0x0163, 0x74}, {0x0164, 0x54}, {0x0165, 0x74},
    {0x0166, 0x54}, {0x0167, 0x74}, {0x0168, 0x55}, {0x0169, 0x75}, {0x016A, 0x55}, {0x016B, 0x75},
    {0x016C, 0x55}, {0x016D, 0x75}, {0x016E, 0x55}, {0x016F, 0x75}, {0x0170, 0x55}, {0x0171, 0x75},
    {0x0172, 0x55}, {0x0173, 0x75}, {0x0174, 0x57}, {0x0175, 0x77}, {0x0176, 0x59}, {0x0177, 0x79},
    {0x0179, 0x5A}, {0x017A, 0x7A}, {0x017B, 0x5A}, {0x017C, 0x7A}, {0x0180, 0x62}, {0x0189, 0xD0},
    {0x0191, 0x83}, {0x0197, 0x49}, {0x019A, 0x6C}, {0x019F, 0x4F}, {0x01A0, 0x4F}, {0x01A1, 0x6F},
    {0x01AB, 0x74}, {0x01AE, 0x54}, {0x01AF, 0x55}, {0x01B0, 0x75}, {0x01B6, 0x7A}, {0x01C0, 0x7C},
    {0x01C3, 0x21}, {0x01CD, 0x41}, {0x01CE, 0x61}, {0x01CF, 0x49}, {0x01D0, 0x69}, {0x01D1, 0x4F},
    {0x01D2, 0x6F}, {0x01D3, 0x55}, {0x01D4, 0x75}, {0x01D5, 0x55}, {0x01D6, 0x75}, {0x01D7, 0x55},
    {0x01D8, 0x75}, {0x01D9, 0x55}, {0x01DA, 0x75}, {0x01DB, 0x55}, {0x01DC, 0x75}, {0x01DE, 0x41},
    {0x01DF, 0x61}, {0x01E4, 0x47}, {0x01E5, 0x67}, {0x01E6, 0x47}, {0x01E7, 0x67}, {0x01E8, 0x4B},
    {0x01E9, 0x6B}, {0x01EA, 0x4F}, {0x01EB, 0x6F}, {0x01EC, 0x4F}, {0x01ED, 0x6F}, {0x01F0, 0x6A},
    {0x0261, 0x67}, {0x02B9, 0x27}, {0x02BA, 0x22}, {0x02BC, 0x27}, {0x02C4, 0x5E}, {0x02C8, 0x27},
    {0x02C9, 0xAF}, {0x02CA, 0xB4}, {0x02CB, 0x60}, {0x02CD, 0x5F}, {0x02DA, 0xB0}, {0x0300, 0x60},
    {0x0301, 0xB4}, {0x0302, 0x5E}, {0x0303, 0x7E}, {0x0304, 0xAF}, {0x0305, 0xAF}, {0x0308, 0xA8},
    {0x030A, 0xB0}, {0x030E, 0x22}, {0x0327, 0xB8}, {0x0331, 0x5F}, {0x0332, 0x5F}, {0x037E, 0x3B},
    {0x0393, 0x47}, {0x0398, 0x54}, {0x03A3, 0x53}, {0x03A6, 0x46}, {0x03A9, 0x4F}, {0x03B1, 0x61},
    {0x03B2, 0xDF}, {0x03B4, 0x64}, {0x03B5, 0x65}, {0x03BC, 0xB5}, {0x03C0, 0x70}, {0x03C3, 0x73},
    {0x03C4, 0x74}, {0x03C6, 0x66}, {0x04BB, 0x68}, {0x0589, 0x3A}, {0x066A, 0x25}, {0x2000, 0x20},
    {0x2001, 0x20}, {0x2002, 0x20}, {0x2003, 0x20}, {0x2004, 0x20}, {0x2005, 0x20}, {0x2006, 0x20},
    {0x2010, 0x2D}, {0x2011, 0x2D}, {0x2017, 0x3D}, {0x2024, 0xB7}, {0x2032, 0x27}, {0x2035, 0x60},
    {0x2044, 0x2F}, {0x2070, 0xB0}, {0x2074, 0x34}, {0x2075, 0x35}, {0x2076, 0x36}, {0x2077, 0x37},
    {0x2078, 0x38}, {0x207F, 0x6E}, {0x2080, 0x30}, {0x2081, 0x31}, {0x2082, 0x32}, {0x2083, 0x33},
    {0x2084, 0x34}, {0x2085, 0x35}, {0x2086, 0x36}, {0x2087, 0x37}, {0x2088, 0x38}, {0x2089, 0x39},
    {0x20A1, 0xA2}, {0x20A4, 0xA3}, {0x20A7, 0x50}, {0x2102, 0x43}, {0x2107, 0x45}, {0x210A, 0x67},
    {0x210B, 0x48}, {0x210C, 0x48}, {0x210D, 0x48}, {0x210E, 0x68}, {0x2110, 0x49}, {0x2111, 0x49},
    {0x2112, 0x4C}, {0x2113, 0x6C}, {0x2115, 0x4E}, {0x2118, 0x50}, {0x2119, 0x50}, {0x211A, 0x51},
    {0x211B, 0x52}, {0x211C, 0x52}, {0x211D, 0x52}, {0x2124, 0x5A}, {0x2128, 0x5A}, {0x212A, 0x4B},
    {0x212B, 0xC5}, {0x212C, 0x42}, {0x212D, 0x43}, {0x212E, 0x65}, {0x212F, 0x65}, {0x2130, 0x45},
    {0x2131, 0x46}, {0x2133, 0x4D}, {0x2134, 0x6F}, {0x2205, 0xD8}, {0x2212, 0x2D}, {0x2213, 0xB1},
    {0x2215, 0x2F}, {0x2216, 0x5C}, {0x2217, 0x2A}, {0x2218, 0xB0}, {0x2219, 0xB7}, {0x221A, 0x76},
    {0x221E, 0x38}, {0x2223, 0x7C}, {0x2229, 0x6E}, {0x2236, 0x3A}, {0x223C, 0x7E}, {0x2248, 0x98},
    {0x2261, 0x3D}, {0x2264, 0x3D}, {0x2265, 0x3D}, {0x226A, 0xAB}, {0x226B, 0xBB}, {0x22C5, 0xB7},
    {0x2302, 0xA6}, {0x2303, 0x5E}, {0x2310, 0xAC}, {0x2320, 0x28}, {0x2321, 0x29}, {0x2329, 0x3C},
    {0x232A, 0x3E}, {0x2500, 0x2D}, {0x2502, 0xA6}, {0x250C, 0x2B}, {0x2510, 0x2B}, {0x2514, 0x2B},
    {0x2518, 0x2B}, {0x251C, 0x2B}, {0x2524, 0xA6}, {0x252C, 0x2D}, {0x2534, 0x2D}, {0x253C, 0x2B},
    {0x2550, 0x2D}, {0x2551, 0xA6}, {0x2552, 0x2B}, {0x2553, 0x2B}, {0x2554, 0x2B}, {0x2555, 0x2B},
    {0x2556, 0x2B}, {0x2557, 0x2B}, {0x2558, 0x2B}, {0x2559, 0x2B}, {0x255A, 0x2B}, {0x255B, 0x2B},
    {0x255C, 0x2B}, {0x255D, 0x2B}, {0x255E, 0xA6}, {0x255F, 0xA6}, {0x2560, 0xA6}, {0x2561, 0xA6},
    {0x2562, 0xA6}, {0x2563, 0xA6}, {0x2564, 0x2D}, {0x2565, 0x2D}, {0x2566, 0x2D}, {0x2567, 0x2D},
    {0x2568, 0x2D}, {0x2569, 0x2D}, {0x256A, 0x2B}, {0x256B, 0x2B}, {0x256C, 0x2B}, {0x2580, 0xAF},
    {0x2584, 0x5F}, {0x2588, 0xA6}, {0x258C, 0xA6}, {0x2590, 0xA6}, {0x2591, 0xA6}, {0x2592, 0xA6},
    {0x2593, 0xA6}, {0x25A0, 0xA6}, {0x263C, 0xA4}, {0x2758, 0x7C}, {0x3000, 0x20}, {0x3008, 0x3C},
    {0x3009, 0x3E}, {0x300A, 0xAB}, {0x300B, 0xBB}, {0x301A, 0x5B}, {0x301B, 0x5D}, {0x30FB, 0xB7},
    {0xFF01, 0x21}, {0xFF02, 0x22}, {0xFF03, 0x23}, {0xFF04, 0x24}, {0xFF05, 0x25}, {0xFF06, 0x26},
    {0xFF07, 0x27}, {0xFF08, 0x28}, {0xFF09, 0x29}, {0xFF0A, 0x2A}, {0xFF0B, 0x2B}, {0xFF0C, 0x2C},
    {0xFF0D, 0x2D}, {0xFF0E, 0x2E}, {0xFF0F, 0x2F}, {0xFF10, 0x30}, {0xFF11, 0x31}, {0xFF12, 0x32},
    {0xFF13, 0x33}, {0xFF14, 0x34}, {0xFF15, 0x35}, {0xFF16, 0x36}, {0xFF17, 0x37}, {0xFF18, 0x38},
    {0xFF19, 0x39}, {0xFF1A, 0x3A}, {0xFF1B, 0x3B}, {0xFF1C, 0x3C}, {0xFF1D, 0x3D}, {0xFF1E, 0x3E},
    {0xFF20, 0x40}, {0xFF21, 0x41}, {0xFF22, 0x42}, {0xFF23, 0x43}, {0xFF24, 0x44}, {0xFF25, 0x45},
    {0xFF26, 0x46}, {0xFF27, 0x47}, {0xFF28, 0x48}, {0xFF29, 0x49}, {0xFF2A, 0x4A}, {0xFF2B, 0x4B},
    {0xFF2C, 0x4C}, {0xFF2D, 0x4D}, {0xFF2E, 0x4E}, {0xFF2F, 0x4F}, {0xFF30, 0x50}, {0xFF31, 0x51},
    {0xFF32, 0x52}, {0xFF33, 0x53}, {0xFF34, 0x54}, {0xFF35, 0x55}, {0xFF36, 0x56}, {0xFF37, 0x57},
    {0xFF38, 0x58}, {0xFF39, 0x59}, {0xFF3A, 0x5A}, {0xFF3B, 0x5B}, {0xFF3C, 0x5C}, {0xFF3D, 0x5D},
    {0xFF3E, 0x5E}, {0xFF3F, 0x5F}, {0xFF40, 0x60}, {0xFF41, 0x61}, {0xFF42, 0x62}, {0xFF43, 0x63},
    {0xFF44, 0x64}, {0xFF45, 0x65}, {0xFF46, 0x66}, {0xFF47, 0x67}, {0xFF48, 0x68}, {0xFF49, 0x69},
    {0xFF4A, 0x6A}, {0xFF4B, 0x6B}, {0xFF4C, 0x6C}, {0xFF4D, 0x6D}, {0xFF4E, 0x6E}, {0xFF4F, 0x6F},
    {0xFF50, 0x70}, {0xFF51, 0x71}, {0xFF52, 0x72}, {0xFF53, 0x73}, {0xFF54, 0x74}, {0xFF55, 0x75},
    {0xFF56, 0x76}, {0xFF57, 0x77}, {0xFF58, 0x78}, {0xFF59, 0x79}, {0xFF5A, 0x7A}, {0xFF5B, 0x7B},
    {0xFF5C, 0x7C}, {0xFF5D, 0x7D}, {0xFF5E, 0x7E},
};

struct CallbackContext {
    bool windows1252 = false;
    bool utf8 = false;
};

// Windows assigns the five bytes Windows-1252 leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D)
// to the C1 controls of the same value; ICU treats them as unassigned. Any other byte
// sequence the code page cannot read becomes U+FFFD.
void ToUnicodeCallback(void const* context, UConverterToUnicodeArgs* args, char const* bytes,
                       int32_t length, UConverterCallbackReason reason, UErrorCode* err) {
    if (reason > UCNV_IRREGULAR)
        return; // reset, close or clone: nothing to write
    auto const* ctx = static_cast<CallbackContext const*>(context);
    *err = U_ZERO_ERROR;
    UChar out = 0xFFFD;
    if (ctx->windows1252 && length == 1)
        out = static_cast<unsigned char>(bytes[0]);
    ucnv_cbToUWriteUChars(args, &out, 1, 0, err);
}

// What WideCharToMultiByte without flags writes for a character the code page lacks: its
// best fit, otherwise the default character '?'. UTF-8 lacks only lone surrogates, which
// Windows writes as U+FFFD.
void FromUnicodeCallback(void const* context, UConverterFromUnicodeArgs* args, UChar const*,
                         int32_t, UChar32 codePoint, UConverterCallbackReason reason,
                         UErrorCode* err) {
    if (reason > UCNV_IRREGULAR)
        return;
    auto const* ctx = static_cast<CallbackContext const*>(context);
    *err = U_ZERO_ERROR;
    if (ctx->utf8) {
        static char const replacement[] = "\xEF\xBF\xBD";
        ucnv_cbFromUWriteBytes(args, replacement, 3, 0, err);
        return;
    }
    // Windows replaces each unit of a character beyond the BMP, so a pair becomes "??".
    if (codePoint > 0xFFFF) {
        ucnv_cbFromUWriteBytes(args, "??", 2, 0, err);
        return;
    }
    char out = '?';
    if (ctx->windows1252) {
        // The five C1 controls Windows reads from the undefined bytes go back to them.
        if (codePoint == 0x81 || codePoint == 0x8D || codePoint == 0x8F || codePoint == 0x90 ||
            codePoint == 0x9D) {
            out = static_cast<char>(codePoint);
            ucnv_cbFromUWriteBytes(args, &out, 1, 0, err);
            return;
        }
        auto const* end = std::end(bestFit1252);
        auto const* it =
            std::lower_bound(std::begin(bestFit1252), end, codePoint,
                             [](BestFit const& entry, UChar32 cp) { return entry.unit < cp; });
        if (it != end && it->unit == codePoint)
            out = static_cast<char>(it->byte);
        ucnv_cbFromUWriteBytes(args, &out, 1, 0, err);
        return;
    }
    // Other code pages: a decorated or compatibility form of an ASCII character is written as
    // that character, which is what Windows' best-fit tables mostly do.
    UErrorCode status = U_ZERO_ERROR;
    UNormalizer2 const* nfkd = unorm2_getNFKDInstance(&status);
    UChar decomposition[32];
    if (U_SUCCESS(status) && (codePoint < 0xD800 || codePoint > 0xDFFF)) {
        int32_t const length =
            unorm2_getRawDecomposition(nfkd, codePoint, decomposition, 32, &status);
        if (U_SUCCESS(status) && length > 0 && decomposition[0] >= 0x20 &&
            decomposition[0] < 0x7F) {
            // Only a base letter followed by combining marks, or a lone compatibility form,
            // has an evident best fit; "½" or "ǆ" do not reduce to one character.
            bool single = true;
            for (int32_t i = 1; i < length; ++i)
                single = single && decomposition[i] >= 0x300 && decomposition[i] <= 0x36F;
            if (single)
                out = static_cast<char>(decomposition[0]);
        }
    }
    ucnv_cbFromUWriteBytes(args, &out, 1, 0, err);
}

// UConverter keeps conversion state and must not be shared between threads; each thread
// opens its own and reopens it when the application has chosen another code page.
struct Converter {
    unsigned generation = ~0u;
    UConverter* conv = nullptr;
    CallbackContext context;
    // The code page writes each ASCII character as its own byte and reads it back, as nearly
    // all do; text of ASCII alone is then copied without a call to the converter.
    bool asciiAsIs = false;

    Converter() = default;
    Converter(Converter const&) = delete;
    Converter& operator=(Converter const&) = delete;
    ~Converter() {
        if (conv != nullptr)
            ucnv_close(conv);
    }
};
thread_local Converter threadConverter;

UConverter* OpenConfigured(char const* name, CallbackContext* context) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* conv = ucnv_open(name, &status);
    if (U_FAILURE(status))
        return nullptr;
    // ICU names Windows-1252 by the IBM table it is built from.
    context->utf8 = ucnv_getType(conv) == UCNV_UTF8;
    context->windows1252 = std::strcmp(ucnv_getName(conv, &status), "ibm-5348_P100-1997") == 0;
    ucnv_setToUCallBack(conv, ToUnicodeCallback, context, nullptr, nullptr, &status);
    ucnv_setFromUCallBack(conv, FromUnicodeCallback, context, nullptr, nullptr, &status);
    // ICU's fallback mappings stand in for the best-fit tables Windows has for other code
    // pages; for Windows-1252 the exact table above decides instead.
    ucnv_setFallback(conv, !context->windows1252);
    return conv;
}

// Whether the converter maps the 128 ASCII characters to their own bytes and back, tried on
// all of them in one text, which also shows up converters that escape or shift some of them.
bool AsciiAsIs(UConverter* conv) {
    char bytes[128];
    UChar units[128];
    for (int i = 0; i < 128; ++i) {
        bytes[i] = static_cast<char>(i);
        units[i] = static_cast<UChar>(i);
    }
    char narrow[512];
    UChar wide[512];
    UErrorCode status = U_ZERO_ERROR;
    ucnv_reset(conv);
    int32_t const narrowLength = ucnv_fromUChars(conv, narrow, 512, units, 128, &status);
    int32_t const wideLength = ucnv_toUChars(conv, wide, 512, bytes, 128, &status);
    ucnv_reset(conv);
    return U_SUCCESS(status) && narrowLength == 128 && wideLength == 128 &&
           std::memcmp(narrow, bytes, 128) == 0 && std::memcmp(wide, units, sizeof units) == 0;
}

// The thread's converter for the current code page, opened when needed; not reset.
Converter* ThreadConverter() {
    Converter& c = threadConverter;
    unsigned const generation = codePageGeneration.load(std::memory_order_acquire);
    if (c.conv != nullptr && c.generation == generation)
        return &c;
    std::string name;
    {
        std::lock_guard lock(codePageMutex);
        name = codePageName;
        c.generation = codePageGeneration.load(std::memory_order_relaxed);
    }
    if (c.conv != nullptr)
        ucnv_close(c.conv);
    c.conv = OpenConfigured(name.c_str(), &c.context);
    c.asciiAsIs = c.conv != nullptr && AsciiAsIs(c.conv);
    return c.conv != nullptr ? &c : nullptr;
}

// Arguments as Windows validates them: a length of 0 or below -1, a null source, or a null
// destination with a size are rejected.
bool ValidArguments(void const* src, int srcLength, void const* dst, int dstSize) {
    return src != nullptr && srcLength != 0 && srcLength >= -1 && dstSize >= 0 &&
           (dstSize == 0 || dst != nullptr) && src != dst;
}

} // namespace

namespace detail {
// Lets the case-blind narrow searches notice that the code page changed.
unsigned AnsiCodePageGeneration() {
    return codePageGeneration.load(std::memory_order_acquire);
}
} // namespace detail

namespace {

// One conversion in Windows' calling convention, either way round: convert is
// ucnv_fromUnicode or ucnv_toUnicode, which take the same arguments. A size of 0 counts what
// the conversion would write, through a scratch buffer.
template <class In, class Out, class Convert>
int Convert16(Convert convert, In const* src, int srcLength, Out* dst, int dstSize) {
    if (!ValidArguments(src, srcLength, dst, dstSize))
        return 0;
    std::size_t const length = srcLength == -1 ? std::char_traits<In>::length(src) + 1
                                               : static_cast<std::size_t>(srcLength);
    Converter* converter = ThreadConverter();
    if (converter == nullptr)
        return 0;
    if (converter->asciiAsIs && std::all_of(src, src + length, [](In unit) {
            return static_cast<std::make_unsigned_t<In>>(unit) < 0x80;
        })) {
        // What the converter would do: as much as fits, and 0 when not all of it did.
        if (dstSize == 0)
            return length <= 0x7FFFFFFF ? static_cast<int>(length) : 0;
        std::size_t const fits = std::min(length, static_cast<std::size_t>(dstSize));
        std::copy(src, src + fits, dst);
        return fits == length ? static_cast<int>(length) : 0;
    }
    UConverter* conv = converter->conv;
    ucnv_reset(conv);
    In const* in = src;
    In const* const inEnd = src + length;
    if (dstSize == 0) {
        long long total = 0;
        Out buffer[512];
        UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
        while (status == U_BUFFER_OVERFLOW_ERROR) {
            status = U_ZERO_ERROR;
            Out* out = buffer;
            convert(conv, &out, buffer + 512, &in, inEnd, nullptr, true, &status);
            total += out - buffer;
        }
        return U_SUCCESS(status) && total <= 0x7FFFFFFF ? static_cast<int>(total) : 0;
    }
    UErrorCode status = U_ZERO_ERROR;
    Out* out = dst;
    convert(conv, &out, dst + dstSize, &in, inEnd, nullptr, true, &status);
    return U_SUCCESS(status) ? static_cast<int>(out - dst) : 0;
}

} // namespace

int WideCharToMultiByte(char16_t const* src, int srcLength, char* dst, int dstSize) {
    return Convert16(ucnv_fromUnicode, src, srcLength, dst, dstSize);
}

int MultiByteToWideChar(char const* src, int srcLength, char16_t* dst, int dstSize) {
    return Convert16(ucnv_toUnicode, src, srcLength, dst, dstSize);
}

bool SetAnsiCodePage(char const* icuConverterName) {
    if (icuConverterName == nullptr || *icuConverterName == '\0')
        return false;
    UErrorCode status = U_ZERO_ERROR;
    UConverter* probe = ucnv_open(icuConverterName, &status);
    if (U_FAILURE(status))
        return false;
    ucnv_close(probe);
    std::lock_guard lock(codePageMutex);
    codePageName = icuConverterName;
    codePageGeneration.fetch_add(1, std::memory_order_release);
    return true;
}

std::string Utf16ToUtf8(std::u16string_view text) {
    if (text.empty())
        return {};
    UErrorCode status = U_ZERO_ERROR;
    int32_t needed = 0;
    auto const length = static_cast<int32_t>(text.size());
    u_strToUTF8WithSub(nullptr, 0, &needed, text.data(), length, 0xFFFD, nullptr, &status);
    std::string out(static_cast<std::size_t>(needed), '\0');
    status = U_ZERO_ERROR;
    u_strToUTF8WithSub(out.data(), needed, &needed, text.data(), length, 0xFFFD, nullptr, &status);
    return U_SUCCESS(status) || status == U_STRING_NOT_TERMINATED_WARNING ? out : std::string();
}

std::u16string Utf8ToUtf16(std::string_view text) {
    if (text.empty())
        return {};
    UErrorCode status = U_ZERO_ERROR;
    int32_t needed = 0;
    auto const length = static_cast<int32_t>(text.size());
    u_strFromUTF8WithSub(nullptr, 0, &needed, text.data(), length, 0xFFFD, nullptr, &status);
    std::u16string out(static_cast<std::size_t>(needed), u'\0');
    status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(out.data(), needed, &needed, text.data(), length, 0xFFFD, nullptr,
                         &status);
    return U_SUCCESS(status) || status == U_STRING_NOT_TERMINATED_WARNING ? out : std::u16string();
}

} // namespace qv::platform
