// qvtool as its users meet it: a process with arguments, output and an exit status, run on
// files of each kind, on damaged and missing files and on bad arguments.
#include "platform/FileTestSupport.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <qv/qvcore.h>
#include <string>
#include <sys/wait.h>

namespace {

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

class Qvtool : public ::testing::Test {
protected:
    Outcome Call(std::string const& arguments) {
        std::string command =
            std::string(QV_QVTOOL) + " " + arguments + " >" + Dir("out") + " 2>" + Dir("err");
        int raw = std::system(command.c_str());
        return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, ReadBytes(Dir("out")),
                ReadBytes(Dir("err"))};
    }

    std::string Dir(std::string const& name) const { return m_dir / name; }
    // A tree of three nodes under the name "tree".
    std::string WriteArchive(char const* name) {
        SP<BNode> root = new BNode;
        root->SetText(u"Project");
        root->QueryChild(u"Scans/Scan001");
        BQuorvelArchive archive(m_dir.U(name).c_str(), BArchive::WRITE, "class QvtoolTest", 3);
        archive.Insert(root, "tree");
        return Dir(name);
    }

    TempDir m_dir;
};

TEST_F(Qvtool, ObjectArchiveDumpAndTheFirstBadRecord) {
    std::string archive = WriteArchive("project.qva");
    auto document = nlohmann::json::parse(Call("dump --json " + archive).out);
    EXPECT_EQ(document["header"]["name"], "class QvtoolTest");
    EXPECT_EQ(document["header"]["application version"], 3);
    auto const records = document["records"];
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0]["name"], "tree");
    EXPECT_EQ(records[0]["class"], "class BNode");
    // Cut the file inside the second record's data.
    WriteBytes(archive, ReadBytes(archive).substr(0, records[1]["offset"].get<long long>() + 30));
    Outcome check = Call("check --json " + archive);
    EXPECT_EQ(check.status, 1);
    auto verdict = nlohmann::json::parse(check.out);
    EXPECT_FALSE(verdict["sound"].get<bool>());
    EXPECT_EQ(verdict["damage"]["record"], 2);
    EXPECT_EQ(verdict["damage"]["offset"], records[1]["offset"]);
}

// Three kinds, written by the library itself; the others share the recognizer and printer.
TEST_F(Qvtool, KindsAreToldByContentAndDumpAsJson) {
    WriteArchive("project.qva");
    auto wide = [this](char const* name) { return WString(m_dir.U(name).c_str()); };
    {
        BBinProfile profile(wide("b.bin"), kProfileNew);
        profile.WriteInt(u"Gain", 5);
    }
    BProfile::WriteString(wide("c.ini"), u"Current", u"Vendor", u"Quorvel");
    struct Case {
        char const* file;
        char const* kind;
        char const* dumped; // a text the JSON dump must hold
    } const cases[] = {
        {"project.qva", "object archive", "Scan001"},
        {"b.bin", "binary profile (Unicode form)", "gain"},
        {"c.ini", "ini or text profile", "Quorvel"},
    };
    for (Case const& c : cases) {
        std::string file = Dir(c.file);
        Outcome info = Call("info --json " + file);
        ASSERT_EQ(info.status, 0) << c.file << ": " << info.err;
        EXPECT_EQ(nlohmann::json::parse(info.out)["kind"], c.kind) << c.file;
        Outcome dump = Call("dump --json " + file);
        EXPECT_EQ(dump.status, 0) << c.file;
        EXPECT_NE(nlohmann::json::parse(dump.out).dump().find(c.dumped), std::string::npos)
            << c.file;
        EXPECT_EQ(Call("check " + file).status, 0) << c.file;
    }
    EXPECT_EQ(Call("profile get " + Dir("b.bin") + " default GAIN").out, "5\n");
    EXPECT_EQ(Call("profile set " + Dir("c.ini") + " Current Vendor Acme").status, 0);
    EXPECT_EQ(Call("profile get " + Dir("c.ini") + " Current Vendor").out, "Acme\n");
    EXPECT_EQ(Call("sha1 " + Dir("b.bin")).out.size(), 42 + Dir("b.bin").size() + 1);
    EXPECT_EQ(Call("guid").out.size(), 37u);
}

TEST_F(Qvtool, UsageErrorsAndForeignFiles) {
    struct Case {
        char const* name;
        std::string arguments;
        int status;
        char const* message;
    };
    WriteBytes(Dir("foreign.bin"), std::string("\x7f"
                                               "ELF\0\0\0\0",
                                               8));
    Case const cases[] = {
        {"missing file", "info " + Dir("none.qva"), 2, "no such file"},
        {"unknown option", "dump --frobnicate x", 2, "frobnicate"},
        {"foreign file", "check " + Dir("foreign.bin"), 1, "not a file qvtool reads"},
    };
    for (Case const& c : cases) {
        Outcome run = Call(c.arguments);
        EXPECT_EQ(run.status, c.status) << c.name;
        EXPECT_NE(run.err.find(c.message), std::string::npos) << c.name << ": " << run.err;
    }
}

} // namespace
