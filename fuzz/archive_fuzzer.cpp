// Opens an arbitrary file as an object archive and loads what it can, then writes what came
// out to a second archive. Whatever the bytes, the archive must not crash, hang, leak or
// allocate beyond what the file holds.
#include "ArchiveTestSupport.h"

#include <cstdint>
#include <cstdio>
#include <qv/persistence/BQuorvelArchive.h>
#include <string>
#include <unistd.h>

namespace {

std::string const& FilePath(char const* suffix) {
    static std::string const in = "/tmp/qv-archive-fuzz-" + std::to_string(::getpid()) + ".qva";
    static std::string const out = in + ".out";
    return *suffix ? out : in;
}

std::u16string Wide(std::string const& path) {
    return std::u16string(path.begin(), path.end());
}

void WriteInput(uint8_t const* data, size_t size) {
    std::FILE* file = std::fopen(FilePath("").c_str(), "wb");
    if (!file)
        return;
    std::fwrite(data, 1, size, file);
    std::fclose(file);
}

void LoadAndStore() {
    BQuorvelArchive in(Wide(FilePath("")).c_str(), BArchive::READ, "class Fuzz", 0);
    BQuorvelArchive out(Wide(FilePath("o")).c_str(), BArchive::WRITE, "class Fuzz", 0);
    for (char const* key : {"root", "1", "2", "3", "a", "tree"})
        out.Insert(in.TakeOut(key), key);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    WriteInput(data, size);
    LoadAndStore();
    ArchiveItem::BreakCycles();
    return 0;
}
