#include "ProgressBar.h"

#include <cstdio>
#include <unistd.h>

namespace qvtool {

namespace {

constexpr long long kLargeFile = 4LL << 20;
constexpr int kWidth = 40;

void Draw(long long done, long long total) {
    int filled = total > 0 ? static_cast<int>(done * kWidth / total) : kWidth;
    std::fprintf(stderr, "\r[%-*.*s] %3lld%%", kWidth, filled,
                 "########################################", total > 0 ? done * 100 / total : 100);
    if (done >= total)
        std::fputc('\n', stderr);
    std::fflush(stderr);
}

} // namespace

BArchiveInspector::Progress ProgressBarFor(long long fileSize) {
    if (fileSize < kLargeFile || !::isatty(STDERR_FILENO))
        return {};
    return &Draw;
}

} // namespace qvtool
