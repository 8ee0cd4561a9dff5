#include "qv/platform/CodePage.h"

#include <atomic>
#include <cstring>
#include <mutex>
#include <string>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

namespace qv::platform {

namespace {

std::mutex codePageMutex;
std::string codePageName = "windows-1252";
std::atomic<unsigned> codePageGeneration{0};

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
// best fit when the character is a decorated or compatibility form of an ASCII one (Ā → A,
// fullwidth A → A), otherwise the default character '?'. UTF-8 lacks only lone surrogates,
// which Windows writes as U+FFFD.
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
    char out = '?';
    UErrorCode status = U_ZERO_ERROR;
    UNormalizer2 const* nfkd = unorm2_getNFKDInstance(&status);
    UChar decomposition[32];
    if (U_SUCCESS(status) && (codePoint < 0xD800 || codePoint > 0xDFFF)) {
        int32_t const length =
            unorm2_getRawDecomposition(nfkd, codePoint, decomposition, 32, &status);
        if (U_SUCCESS(status) && length > 0 && decomposition[0] > 0x20 && decomposition[0] < 0x7F) {
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
    // Windows' code page tables include best-fit mappings; ICU's fallbacks are the nearest.
    ucnv_setFallback(conv, true);
    return conv;
}

UConverter* ThreadConverter() {
    Converter& c = threadConverter;
    unsigned const generation = codePageGeneration.load(std::memory_order_acquire);
    if (c.conv != nullptr && c.generation == generation) {
        ucnv_reset(c.conv);
        return c.conv;
    }
    std::string name;
    {
        std::lock_guard lock(codePageMutex);
        name = codePageName;
        c.generation = codePageGeneration.load(std::memory_order_relaxed);
    }
    if (c.conv != nullptr)
        ucnv_close(c.conv);
    c.conv = OpenConfigured(name.c_str(), &c.context);
    return c.conv;
}

// Arguments as Windows validates them: a length of 0 or below -1, a null source, or a null
// destination with a size are rejected.
bool ValidArguments(void const* src, int srcLength, void const* dst, int dstSize) {
    return src != nullptr && srcLength != 0 && srcLength >= -1 && dstSize >= 0 &&
           (dstSize == 0 || dst != nullptr) && src != dst;
}

} // namespace

int WideCharToMultiByte(char16_t const* src, int srcLength, char* dst, int dstSize) {
    if (!ValidArguments(src, srcLength, dst, dstSize))
        return 0;
    std::size_t const length = srcLength == -1 ? std::char_traits<char16_t>::length(src) + 1
                                               : static_cast<std::size_t>(srcLength);
    UConverter* conv = ThreadConverter();
    if (conv == nullptr)
        return 0;
    UChar const* in = src;
    UChar const* const inEnd = src + length;
    if (dstSize == 0) {
        long long total = 0;
        char buffer[512];
        UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
        while (status == U_BUFFER_OVERFLOW_ERROR) {
            status = U_ZERO_ERROR;
            char* out = buffer;
            ucnv_fromUnicode(conv, &out, buffer + sizeof buffer, &in, inEnd, nullptr, true,
                             &status);
            total += out - buffer;
        }
        return U_SUCCESS(status) && total <= 0x7FFFFFFF ? static_cast<int>(total) : 0;
    }
    UErrorCode status = U_ZERO_ERROR;
    char* out = dst;
    ucnv_fromUnicode(conv, &out, dst + dstSize, &in, inEnd, nullptr, true, &status);
    return U_SUCCESS(status) ? static_cast<int>(out - dst) : 0;
}

int MultiByteToWideChar(char const* src, int srcLength, char16_t* dst, int dstSize) {
    if (!ValidArguments(src, srcLength, dst, dstSize))
        return 0;
    std::size_t const length =
        srcLength == -1 ? std::strlen(src) + 1 : static_cast<std::size_t>(srcLength);
    UConverter* conv = ThreadConverter();
    if (conv == nullptr)
        return 0;
    char const* in = src;
    char const* const inEnd = src + length;
    if (dstSize == 0) {
        long long total = 0;
        UChar buffer[512];
        UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
        while (status == U_BUFFER_OVERFLOW_ERROR) {
            status = U_ZERO_ERROR;
            UChar* out = buffer;
            ucnv_toUnicode(conv, &out, buffer + 512, &in, inEnd, nullptr, true, &status);
            total += out - buffer;
        }
        return U_SUCCESS(status) && total <= 0x7FFFFFFF ? static_cast<int>(total) : 0;
    }
    UErrorCode status = U_ZERO_ERROR;
    UChar* out = dst;
    ucnv_toUnicode(conv, &out, dst + dstSize, &in, inEnd, nullptr, true, &status);
    return U_SUCCESS(status) ? static_cast<int>(out - dst) : 0;
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
