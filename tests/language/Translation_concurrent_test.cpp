#include "platform/FileTestSupport.h"

#include <atomic>
#include <gtest/gtest.h>
#include <qv/language/BLanguageMap.h>
#include <qv/language/BResId.h>
#include <qv/language/QVTl.h>
#include <qv/platform/StringResources.h>
#include <string>
#include <thread>
#include <vector>

// Translating threads share the registered map, and read rows of the string table while another
// thread loads rows into the same table.
TEST(TranslationConcurrent, ReadersShareTheMapAndTheTableWhileRowsLoad) {
    TempDir dir;
    std::string rows;
    for (int id = 47000; id < 47200; ++id)
        rows += std::to_string(id) + "\trow " + std::to_string(id) + "\n";
    WriteBytes(dir / "rows.txt", rows);

    SP<BLanguageMap> map = new BLanguageMap;
    map->Add(u"$OPEN", u"Open", u"Öffnen", false, false);
    map->Add(u"$FILE_NAME", u"File name", u"Dateiname", false, false);
    BLanguageMap::RegisterInstance(map);

    std::atomic<bool> loading{true};
    std::atomic<int> wrong{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 4; ++t)
        readers.emplace_back([&] {
            do {
                if (QVTl(u"$OPEN") != WString(u"Öffnen") ||
                    QVTlExt(u"$FILE_NAME: $OPEN") != WString(u"Dateiname: Öffnen") ||
                    static_cast<WString>(BResId(28484)) != WString(u"CALIBRATION"))
                    ++wrong;
                WString const row = BResId(47100);
                if (!row.IsEmpty() && row != WString(u"row 47100"))
                    ++wrong;
            } while (loading.load());
        });
    WString const path(dir.U("rows.txt").c_str());
    for (int round = 0; round < 20; ++round)
        EXPECT_EQ(qv::platform::LoadStringTable(qv::platform::LibraryModule(), path), 200);
    loading = false;
    for (auto& reader : readers)
        reader.join();
    BLanguageMap::RegisterInstance(nullptr);
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(static_cast<WString>(BResId(47199)).ToUtf8(), "row 47199");
}
