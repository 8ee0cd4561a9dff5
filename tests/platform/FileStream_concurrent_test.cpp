#include "platform/FileTestSupport.h"

#include <gtest/gtest.h>
#include <qv/platform/FileStream.h>
#include <qv/platform/WideStream.h>
#include <string>
#include <thread>

using namespace qv::platform;

// Threads open, read and close ANSI and Unicode text streams at the same time: each must keep
// its own stream's kind, also when stdio hands a closed stream's address to a new one.
TEST(FileStreamConcurrent, EachStreamKeepsItsKindAcrossThreads) {
    TempDir dir;
    WriteBytes(dir / "ansi.txt", "ab\r\n");
    WriteBytes(dir / "wide.txt", std::string("\xFF\xFE\x61\0b\0\r\0\n\0", 10));
    auto reader = [&](char const* name, char16_t const* mode) {
        std::u16string const path = dir.U(name);
        for (int i = 0; i < 300; ++i) {
            std::FILE* f = nullptr;
            ASSERT_EQ(_wfopen_s(&f, path.c_str(), mode), 0);
            char16_t line[16];
            ASSERT_NE(fgetws16(line, 16, f), nullptr);
            EXPECT_EQ(std::u16string(line), u"ab\n");
            std::fclose(f);
        }
    };
    std::thread a(reader, "ansi.txt", u"rt");
    std::thread b(reader, "wide.txt", u"r,ccs=UTF-16LE");
    reader("ansi.txt", u"r,ccs=UNICODE");
    a.join();
    b.join();
}
