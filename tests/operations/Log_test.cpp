#include <gtest/gtest.h>
#include <optional>
#include <qv/operations/Log.h>
#include <string>
#include <vector>

using Qv::ELog;

namespace {
struct Entry {
    std::optional<std::u16string> source;
    ELog level;
    std::u16string context, text;
    bool operator==(Entry const&) const = default;
};

class RecordingSink : public Qv::LoggerInterface {
public:
    void Write(char16_t const* source, ELog level, char16_t const* context,
               char16_t const* text) override {
        entries.push_back(
            {source ? std::optional<std::u16string>(source) : std::nullopt, level, context, text});
    }
    std::vector<Entry> entries;
};

class LogTest : public ::testing::Test {
protected:
    void TearDown() override { Qv::RegisterLoggerInterface(nullptr); }
};
} // namespace

// Without a sink the arguments are not touched; text of 4096 units or more is dropped, not cut;
// a null format is an empty text.
TEST_F(LogTest, HandsFormattedTextToTheSink) {
    // Bad pointers for %s and %S: formatting would read them.
    Qv::Log(u"src", ELog::Error, u"ctx", u"%s %S", reinterpret_cast<char16_t const*>(8),
            reinterpret_cast<char const*>(8));
    RecordingSink sink;
    Qv::RegisterLoggerInterface(&sink);
    std::u16string const longest(4095, u'x');
    Qv::Log(u"scanner", ELog::Warning, u"calibration", u"%s: %d of %S", u"cameras", 2, "3");
    Qv::Log(ELog::Info, u"ctx", nullptr);
    Qv::Log(ELog::Info, u"", u"%s", longest.c_str());
    Qv::Log(ELog::Info, u"", u"%sy", longest.c_str());
    Qv::Log(ELog::Info, u"", u"%y");
    EXPECT_EQ(sink.entries, (std::vector<Entry>{
                                {u"scanner", ELog::Warning, u"calibration", u"cameras: 2 of 3"},
                                {std::nullopt, ELog::Info, u"ctx", u""},
                                {std::nullopt, ELog::Info, u"", longest},
                                {std::nullopt, ELog::Info, u"", u""},
                                {std::nullopt, ELog::Info, u"", u""},
                            }));
}

TEST_F(LogTest, OnlyTheRegisteredSinkUnregistersAndADyingSinkLeavesOthersAlone) {
    RecordingSink second;
    {
        RecordingSink first;
        Qv::RegisterLoggerInterface(&first);
        Qv::RegisterLoggerInterface(&second);
        EXPECT_FALSE(Qv::UnregisterLoggerInterface(&first));
    }
    Qv::Log(ELog::Info, u"", u"a");
    EXPECT_EQ(second.entries.size(), 1u) << "the first sink's death unregistered nothing";
    {
        RecordingSink third;
        Qv::RegisterLoggerInterface(&third);
    }
    Qv::Log(ELog::Info, u"", u"b"); // the third took itself out of service: nobody is called
    EXPECT_EQ(second.entries.size(), 1u);
    Qv::RegisterLoggerInterface(&second);
    EXPECT_TRUE(Qv::UnregisterLoggerInterface(&second));
    EXPECT_FALSE(Qv::UnregisterLoggerInterface(&second));
}

TEST_F(LogTest, ASinkThatThrowsLeavesTheFrontEndUsable) {
    struct Throwing : Qv::LoggerInterface {
        void Write(char16_t const*, ELog, char16_t const*, char16_t const*) override { throw 5; }
    } sink;
    Qv::RegisterLoggerInterface(&sink);
    EXPECT_THROW(Qv::Log(ELog::Error, u"", u"x"), int);
    EXPECT_TRUE(Qv::UnregisterLoggerInterface(&sink)) << "the mutex was given back";
}
