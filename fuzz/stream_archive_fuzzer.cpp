// Opens an arbitrary file as a stream archive, takes out what it can and writes it to a second
// stream archive. Whatever the bytes, the reader must not crash, hang, leak or allocate beyond
// what the file holds; it may throw its BError, and nothing else.
#include "ArchiveTestSupport.h"

#include <cstdint>
#include <cstdio>
#include <qv/core/BError.h>
#include <qv/persistence/BIStreamArchive.h>
#include <qv/persistence/BOStreamArchive.h>
#include <qv/tree/BNode.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

std::string const& FilePath(bool output) {
    static std::string const in = "/tmp/qv-stream-fuzz-" + std::to_string(::getpid()) + ".qvs";
    static std::string const out = in + ".out";
    return output ? out : in;
}

WString Wide(std::string const& path) {
    return WString(std::u16string(path.begin(), path.end()).c_str());
}

void WriteInput(uint8_t const* data, size_t size) {
    std::FILE* file = std::fopen(FilePath(false).c_str(), "wb");
    if (!file)
        return;
    std::fwrite(data, 1, size, file);
    std::fclose(file);
}

// A stream holds no more objects than this in any seed; the bound keeps one input short.
constexpr int kMostObjects = 64;

void LoadAndStore() {
    std::vector<SP<BSmartObj>> loaded;
    try {
        BIStreamArchive in(Wide(FilePath(false)), u"Fuzz");
        for (int i = 0; i < kMostObjects && in.IsGood(); ++i)
            loaded.push_back(in.TakeOut(""));
    } catch (BError const&) {
        // A foreign file or an object of an unknown class: the archive's own error.
    }
    try {
        BOStreamArchive out(Wide(FilePath(true)), u"Fuzz");
        for (auto const& object : loaded)
            out.Insert(object, "o");
    } catch (BError const&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    WriteInput(data, size);
    LoadAndStore();
    return 0;
}
