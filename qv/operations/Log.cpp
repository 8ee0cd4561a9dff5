#include <cstdarg>
#include <mutex>
#include <qv/operations/Log.h>
#include <qv/platform/WideFormat.h>

namespace Qv {

namespace {
// Both are in place before any static constructor runs, and the mutex goes when the library
// is unloaded. A failure of the mutex is raised as std::system_error by std::mutex itself.
constinit std::mutex g_mutex;
constinit LoggerInterface* g_sink = nullptr;

constexpr std::size_t kTextUnits = 4096; // terminator included

void Write(char16_t const* source, ELog level, char16_t const* context, char16_t const* format,
           va_list args) {
    std::lock_guard lock(g_mutex);
    if (!g_sink)
        return;
    char16_t text[kTextUnits];
    // With truncation asked for, a message that does not fit reports -1: it reaches the sink
    // empty rather than cut.
    if (!format || qv::platform::_vsnwprintf_s(text, kTextUnits, kTextUnits - 1, format, args) < 0)
        text[0] = 0;
    g_sink->Write(source, level, context, text);
}

// va_end must run on the way out, also when the sink throws.
struct ArgumentsEnd {
    va_list& args;
    ~ArgumentsEnd() { va_end(args); }
};
} // namespace

void Log(char16_t const* source, ELog level, char16_t const* context, char16_t const* format, ...) {
    va_list args;
    va_start(args, format);
    ArgumentsEnd end{args};
    Write(source, level, context, format, args);
}

void Log(ELog level, char16_t const* context, char16_t const* format, ...) {
    va_list args;
    va_start(args, format);
    ArgumentsEnd end{args};
    Write(nullptr, level, context, format, args);
}

void RegisterLoggerInterface(LoggerInterface* sink) {
    std::lock_guard lock(g_mutex);
    g_sink = sink;
}

bool UnregisterLoggerInterface(LoggerInterface* sink) {
    std::lock_guard lock(g_mutex);
    if (g_sink != sink)
        return false;
    g_sink = nullptr;
    return true;
}

} // namespace Qv
