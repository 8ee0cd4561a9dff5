#include <MessageCounter.h>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <qv/measures/BUnit.h>
#include <qv/measures/BUnitSystem.h>
#include <qv/operations/MessageNumbers.h>
#include <string>
#include <vector>

namespace {

std::string Utf8(WString const& text) {
    return text.ToUtf8();
}

// The display units a user can pick, each with an internal value and what it must show.
struct Shown {
    char const* name;
    std::function<void(BUnitSystem&)> select;
    EUnitClass unitClass;
    char const* symbol;
    double internal;
    double display;
    char const* formatted;   // Format(value, -1)
    int precision;           // and Format(value, precision) ...
    char const* formattedAt; // ... giving this
    char const* nineDigits;  // ConvertStr(value)
};

} // namespace

TEST(BUnit, EachDisplayUnitConvertsAndFormatsAndComesBack) {
    Shown const rows[] = {
        {"millimetres", [](BUnitSystem&) {}, UnitClassLength, "mm", 1.23456, 1.23456, "1.235", 1,
         "1.2", "1.23456"},
        {"area stays in mm² under inches", [](BUnitSystem& s) { s.ChangeUnit(UnitInch); },
         UnitClassArea, "mm²", 2.5, 2.5, "2.500", 0, "2", "2.5"},
        {"plain numbers", [](BUnitSystem&) {}, UnitClassNone, "", 1.0 / 3.0, 1.0 / 3.0,
         "0.333333333", 2, "0.33", "0.333333333"},
        {"a unit of the application's own",
         [](BUnitSystem& s) { s.ChangeUnit(UnitClassLength, u"µm", 1000.0, 0); }, UnitClassLength,
         "µm", 0.0125, 12.5, "12", 1, "12.5", "12.5"},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.name);
        BUnitSystem units;
        row.select(units);
        BUnit const& unit = units.Unit(row.unitClass);
        EXPECT_EQ(Utf8(unit.Symbol()), row.symbol);
        EXPECT_DOUBLE_EQ(unit.Convert(row.internal), row.display);
        EXPECT_DOUBLE_EQ(unit.Revert(row.display), row.internal);
        EXPECT_EQ(Utf8(unit.Format(row.internal, -1)), row.formatted);
        EXPECT_EQ(Utf8(unit.Format(row.internal, row.precision)), row.formattedAt);
        EXPECT_EQ(Utf8(unit.ConvertStr(row.internal)), row.nineDigits);
        // Nine digits of text bring the value back to nine digits.
        EXPECT_NEAR(unit.Revert(unit.ConvertStr(row.internal)), row.internal,
                    std::abs(row.internal) * 1e-8);
    }
}

TEST(BUnit, TextsThatAreNoNumbersAndTextsAtTheLimits) {
    BUnit const plain;
    BUnit const mm(u"mm", 1.0, 3);
    struct Row {
        char const* name;
        WString actual;
        char const* expected;
    } const rows[] = {
        {"Format gives back a text that is no number", mm.Format(u"12 mm", -1), "12 mm"},
        {"Format reads blanks around the number", mm.Format(u" 2.5 ", -1), "2.500"},
        {"ConvertStr of no number is 0", mm.ConvertStr(u"abc"), "0"},
        {"a small value", plain.ConvertStr(0.000012345678912), "1.23456789e-05"},
        {"negative precision takes the unit's", mm.Format(0.0005, -7), "0.001"},
        {"a factor of 0 reverts to infinity", BUnit(u"x", 0.0, 0).RevertStr(1.0), "inf"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(Utf8(row.actual), row.expected) << row.name;
    // Very long fixed texts end where the Windows library's buffer ended.
    EXPECT_EQ(Utf8(plain.Format(1.0, 2'000'000'000)).substr(0, 5), "1.000");
    EXPECT_EQ(plain.Format(1.0, 2'000'000'000).Length(), 127u);
}

TEST(BUnitSystem, EveryChangeIsAnnouncedOncePerClass) {
    struct Row {
        char const* name;
        std::function<void(BUnitSystem&)> change;
        std::vector<unsigned long long> classes;
    } const rows[] = {
        {"millimetres set three classes",
         [](BUnitSystem& s) { s.ChangeUnit(UnitMillimetre); },
         {1, 2, 3}},
        {"degrees set angle", [](BUnitSystem& s) { s.ChangeUnit(UnitDegree); }, {5}},
        {"copies announce nothing", [](BUnitSystem& s) { s = BUnitSystem(s); }, {}},
        {"an unknown setting changes nothing",
         [](BUnitSystem& s) { s.ChangeUnit(static_cast<EUnit>(4)); },
         {}},
        {"one class",
         [](BUnitSystem& s) { s.ChangeUnit(UnitClassTemperature, u"K", 1.0, 0); },
         {4}},
        {"a class outside the table changes nothing",
         [](BUnitSystem& s) { s.ChangeUnit(static_cast<EUnitClass>(6), u"x", 2.0, 0); },
         {}},
    };
    for (auto const& row : rows) {
        SCOPED_TRACE(row.name);
        MessageCounter::Installed messages;
        BUnitSystem units;
        ASSERT_EQ(messages->Take().size(), 5u) << "construction sets five classes";
        BUnitSystem const before(units);
        row.change(units);
        std::vector<unsigned long long> posted;
        for (auto const& m : messages->Take())
            posted.push_back(m.number == MSG_UNIT_CHANGED && m.posted && !m.param2 ? m.param1
                                                                                   : ~0ull);
        EXPECT_EQ(posted, row.classes);
        if (row.classes.empty())
            for (int c = 0; c < BUnitSystem::kClassCount; ++c) {
                auto const unitClass = static_cast<EUnitClass>(c);
                EXPECT_EQ(units.Unit(unitClass).Symbol(), before.Unit(unitClass).Symbol());
                EXPECT_EQ(units.Unit(unitClass).Convert(3.0), before.Unit(unitClass).Convert(3.0));
            }
    }
}

TEST(BUnitSystem, AUnitReferenceSeesChangesAndTheInstanceIsOne) {
    BUnitSystem units;
    BUnit const& length = units.Unit(UnitClassLength);
    units.ChangeUnit(UnitInch);
    EXPECT_EQ(Utf8(length.Symbol()), "\"");
    EXPECT_EQ(length.Precision(), 4);
    EXPECT_EQ(&units.Unit(static_cast<EUnitClass>(-1)), &units.Unit(UnitClassNone));

    BUnitSystem::RegisterInstance(nullptr);
    SP<BUnitSystem> first = BUnitSystem::Instance();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(BUnitSystem::Instance(), first);
    EXPECT_EQ(Utf8(first->Unit(UnitClassLength).Symbol()), "mm");
    SP<BUnitSystem> own(new BUnitSystem);
    BUnitSystem::RegisterInstance(own);
    EXPECT_EQ(BUnitSystem::Instance(), own);
    BUnitSystem::RegisterInstance(nullptr);
    EXPECT_NE(BUnitSystem::Instance(), own);
    BUnitSystem::RegisterInstance(nullptr);
}
