// Two processes on one ini file: a writer killed at any moment leaves the old or the new file,
// never a torn one, and the other process's keys, written from its own cache, are all kept.
#include "../platform/FileTestSupport.h"

#include <chrono>
#include <qv/platform/PrivateProfile.h>
#include <random>
#include <signal.h>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace qv::platform;

namespace {

// Writes keys prefix0.. prefix(n-1) with their index as value.
void WriteKeys(std::u16string const& path, char prefix, int n) {
    for (int i = 0; i < n; ++i) {
        std::string const key = prefix + std::to_string(i), value = std::to_string(i);
        WritePrivateProfileStringW(u"S", std::u16string(key.begin(), key.end()).c_str(),
                                   std::u16string(value.begin(), value.end()).c_str(),
                                   path.c_str());
    }
}

} // namespace

TEST(IniProfileProcesses, AKilledWriterLeavesAWholeFileAndTheOtherWritersKeys) {
    TempDir dir;
    std::mt19937 random(12345);
    std::uniform_int_distribution<int> delay(0, 20000);
    constexpr int kParentKeys = 40;
    for (int round = 0; round < 20; ++round) {
        std::string const name = "k" + std::to_string(round) + ".ini";
        std::u16string const path = dir.U(name);
        pid_t const child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            WriteKeys(path, 'k', 100000);
            ::_exit(0);
        }
        WriteKeys(path, 'p', kParentKeys);
        std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        // Whole means: every line complete, each writer's keys a gapless run with their values.
        std::istringstream lines(ReadBytes(dir / name));
        std::string line;
        std::getline(lines, line);
        ASSERT_EQ(line, "[S]\r") << "round " << round;
        int next[2] = {0, 0}; // the child's, the parent's
        while (std::getline(lines, line)) {
            int& n = next[line[0] == 'p'];
            ASSERT_EQ(line, line.substr(0, 1) + std::to_string(n) + "=" + std::to_string(n) + "\r")
                << "round " << round;
            ++n;
        }
        EXPECT_EQ(next[1], kParentKeys) << "round " << round;
    }
}
