// Processes on one ini file: two writers lose no key, and a writer killed at any moment leaves
// the old or the new file, never a torn one.
#include "../platform/FileTestSupport.h"

#include <chrono>
#include <qv/platform/PrivateProfile.h>
#include <random>
#include <signal.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace qv::platform;

namespace {

std::u16string Key(char prefix, int i) {
    std::string const text = prefix + std::to_string(i);
    return std::u16string(text.begin(), text.end());
}

// Writes keys prefix0.. prefix(n-1) with their index as value; the child ends with _exit.
void WriteKeys(std::u16string const& path, char prefix, int n) {
    for (int i = 0; i < n; ++i) {
        std::string const value = std::to_string(i);
        std::u16string const v(value.begin(), value.end());
        WritePrivateProfileStringW(u"S", Key(prefix, i).c_str(), v.c_str(), path.c_str());
    }
}

} // namespace

TEST(IniProfileProcesses, TwoWritersLoseNoKey) {
    TempDir dir;
    std::u16string const path = dir.U("shared.ini");
    constexpr int kKeys = 150;
    pid_t const child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        WriteKeys(path, 'c', kKeys);
        ::_exit(0);
    }
    WriteKeys(path, 'p', kKeys);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    for (int i = 0; i < kKeys; ++i)
        for (char prefix : {'c', 'p'})
            EXPECT_EQ(GetPrivateProfileIntW(u"S", Key(prefix, i).c_str(), -1, path.c_str()),
                      static_cast<std::uint32_t>(i))
                << prefix << i;
}

TEST(IniProfileProcesses, AKilledWriterLeavesAWholeFile) {
    TempDir dir;
    std::u16string const path = dir.U("k.ini");
    std::mt19937 random(12345);
    std::uniform_int_distribution<int> delay(0, 20000);
    for (int round = 0; round < 25; ++round) {
        pid_t const child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            WriteKeys(path, 'k', 100000);
            ::_exit(0);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        // Whole means: every line complete, the keys a gapless run k0..kn with their values.
        std::string const bytes = ReadBytes(dir / "k.ini");
        if (bytes.empty())
            continue;
        ASSERT_EQ(bytes.rfind("[S]\r\n", 0), 0u) << "round " << round;
        ASSERT_EQ(bytes.substr(bytes.size() - 2), "\r\n") << "round " << round;
        std::size_t pos = 5;
        for (int i = 0; pos < bytes.size(); ++i) {
            std::string const line = "k" + std::to_string(i) + "=" + std::to_string(i) + "\r\n";
            ASSERT_EQ(bytes.compare(pos, line.size(), line), 0) << "round " << round;
            pos += line.size();
        }
    }
}
