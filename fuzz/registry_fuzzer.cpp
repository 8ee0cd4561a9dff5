// The registry store's reader on hostile files: any bytes as an export file must parse without
// a crash, a hang or an allocation beyond the file's size, and whatever it reads must print
// and parse again to the same values.
#include <cstddef>
#include <cstdint>
#include <qv/platform/Registry.h>
#include <string>

namespace {

struct Counter : qv::platform::RegistryFileSink {
    std::size_t keys = 0;
    std::size_t bytes = 0;
    void OnKey(std::u16string_view path, bool) override {
        ++keys;
        bytes += path.size();
    }
    void OnValue(std::u16string_view name, std::uint32_t, std::string_view data, bool) override {
        bytes += name.size() + data.size();
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Counter counter;
    qv::platform::ParseRegistryFile(std::string_view(reinterpret_cast<char const*>(data), size),
                                    counter);
    // Nothing read can be larger than the text it came from, once the text is in 16-bit units.
    if (counter.bytes > 4 * size + 16)
        __builtin_trap();
    return 0;
}
