// The formats only BString has: the binary record on C++ streams.
#include <istream>
#include <ostream>
#include <qv/core/strings/BString.h>

namespace {

std::size_t ReadStream(void* stream, void* data, std::size_t bytes) {
    auto& in = *static_cast<std::istream*>(stream);
    in.read(static_cast<char*>(data), static_cast<std::streamsize>(bytes));
    return static_cast<std::size_t>(in.gcount());
}

bool WriteStream(void* stream, void const* data, std::size_t bytes) {
    auto& out = *static_cast<std::ostream*>(stream);
    return static_cast<bool>(
        out.write(static_cast<char const*>(data), static_cast<std::streamsize>(bytes)));
}

} // namespace

bool BString::FRead(std::istream& stream) {
    return ReadRecord(ReadStream, &stream);
}

bool BString::FWrite(std::ostream& stream) const {
    return WriteRecord(WriteStream, &stream);
}
