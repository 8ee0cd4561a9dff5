// Language files and translation. Importing a language file of 2,000 and 20,000 lines (filling
// the map must grow linearly, although a third of the keys are one-word keys whose default
// texts are checked for doubles); translating 1,000,000 keys and 1,000,000 sentences through a
// map of 20,000 entries; merging a reference file into a translation of 2,000 and 20,000
// entries, side by side with GNU gettext's msgmerge --no-fuzzy-matching on the same entries
// written as .po files, timed as a whole process as a translator would run it.
//
// Filling and merging must grow linearly: the ratio of the 20,000 to the 2,000 case is the
// figure (docs/language-files.md). Both sizes run in one process, nine repetitions each, and
// report their median and their minimum; the ratio is taken of the minima, which one load spike
// on the shared machine does not move. Run with --benchmark_enable_random_interleaving=true,
// so that the repetitions of the two sizes alternate and a busy stretch falls on both alike.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <qv/core/files/BFile.h>
#include <qv/language/BLanguageMap.h>
#include <qv/platform/WideStream.h>
#include <string>
#include <vector>

namespace {

constexpr int kKeysTranslated = 1'000'000;
constexpr int kRepetitions = 9;

// The heap keeps what a map frees. Otherwise glibc hands the pages of a freed map back to the
// kernel or not, depending on where its last blocks happened to lie, and the next iteration
// pays or does not pay the page faults of getting them again: the same import took once or
// twice its time from one build to the next.
[[maybe_unused]] bool const heapKept = [] {
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    return true;
}();

double Min(std::vector<double> const& v) {
    return *std::min_element(v.begin(), v.end());
}

// The sizes whose ratio is the figure, repeated, with median and minimum.
void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(2'000)->Arg(20'000)->Unit(benchmark::kMillisecond)->Repetitions(kRepetitions);
    b->ComputeStatistics("min", Min)->DisplayAggregatesOnly(true);
}

// Entry i: its key (every third a one-word key), default text and translation.
std::u16string Key(int i) {
    std::u16string const n = WString::FromInt(i).CStr();
    return i % 3 == 0 ? u"$Word" + n : u"$AREA_" + std::u16string(1, u'A' + i % 26) + u"_KEY_" + n;
}
std::u16string Default(int i) {
    std::u16string const n = WString::FromInt(i).CStr();
    return u"Default text number " + n + (i % 5 == 0 ? u" with \"quotes\"" : u"");
}
std::u16string Translation(int i) {
    std::u16string const n = WString::FromInt(i).CStr();
    return u"\u00DCbersetzter Text Nummer " + n + (i % 7 == 0 ? u"\\nzweite Zeile" : u"");
}

std::string Utf8(std::u16string const& text) {
    return WString(text.c_str()).ToUtf8();
}

// A .po string: quotes and backslashes escaped.
std::string PoString(std::u16string const& text) {
    std::string out = "\"";
    for (char c : Utf8(text)) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    return out + "\"";
}

// The files of one size, made once in a temporary directory and removed at exit: a
// translation (entries 0 to n-1), a reference with a tenth of its keys new (entries n/10 to
// n + n/10 - 1), both as language files and as .po files.
struct Files {
    std::string dir;
    int entries;

    explicit Files(int n) : entries(n) {
        std::string pattern = (std::filesystem::temp_directory_path() / "qvbenchXXXXXX").string();
        dir = ::mkdtemp(pattern.data()) ? pattern : ".";
        for (char const* sub : {"/old", "/ref", "/new"})
            std::filesystem::create_directory(dir + sub);
        Write("/old", 0, n, true);
        Write("/ref", n / 10, n + n / 10, false);
    }
    ~Files() { std::filesystem::remove_all(dir); }

    WString Path(char const* sub) const { return WString::FromUtf8(dir + sub); }

private:
    void Write(char const* sub, int from, int to, bool translated) {
        BFile out(WString::FromUtf8(dir + sub + "/lang.lng"), u"wt,ccs=UTF-16LE");
        std::ofstream po(dir + sub + (translated ? "/lang.po" : "/lang.pot"), std::ios::binary);
        po << "msgid \"\"\nmsgstr \"\"\n\"Content-Type: text/plain; charset=UTF-8\\n\"\n\n";
        std::u16string text = u"# language file\t\tgenerated\n";
        for (int i = from; i < to; ++i) {
            std::u16string const t = translated ? Translation(i) : u"";
            text += Key(i) + u"\t" + Default(i) + u"\t" + t + u"\n";
            po << "msgctxt " << PoString(Key(i)) << "\nmsgid " << PoString(Default(i))
               << "\nmsgstr " << PoString(t) << "\n\n";
        }
        qv::platform::fputws16(text.c_str(), out);
    }
};

Files const& FilesOf(int n) {
    static Files const small(2'000), large(20'000);
    return n == small.entries ? small : large;
}

void BM_Import_LanguageFile(benchmark::State& state) {
    Files const& files = FilesOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        // The map is freed outside the measured time: the import is measured, not its undoing.
        auto map = std::make_unique<BLanguageMap>();
        int const result = map->ImportMapFiles(files.Path("/old"), u"lang.lng", nullptr, false);
        if (result != 0)
            state.SkipWithError("import failed");
        state.PauseTiming();
        map.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Import_LanguageFile)->Apply(Sizes);

SP<BLanguageMap> FilledMap() {
    static SP<BLanguageMap> const map = [] {
        SP<BLanguageMap> m = new BLanguageMap;
        m->ImportMapFiles(FilesOf(20'000).Path("/old"), u"lang.lng", nullptr, false);
        return m;
    }();
    return map;
}

void BM_Translate_Keys(benchmark::State& state) {
    SP<BLanguageMap> const map = FilledMap();
    std::vector<WString> keys;
    for (int i = 0; i < 1000; ++i)
        keys.emplace_back(Key(i * 19 % 20'000).c_str());
    for (auto _ : state)
        for (int i = 0; i < kKeysTranslated; ++i)
            benchmark::DoNotOptimize(map->Translate(keys[i % keys.size()]));
    state.SetItemsProcessed(state.iterations() * kKeysTranslated);
}
BENCHMARK(BM_Translate_Keys)->Unit(benchmark::kMillisecond);

void BM_TranslateExt_Sentences(benchmark::State& state) {
    SP<BLanguageMap> const map = FilledMap();
    std::vector<WString> sentences;
    for (int i = 0; i < 1000; ++i)
        sentences.emplace_back(
            (u"Error: " + Key(i * 7 % 20'000) + u" in " + Key(i * 13 % 20'000) + u", $ 5.")
                .c_str());
    for (auto _ : state)
        for (int i = 0; i < kKeysTranslated; ++i)
            benchmark::DoNotOptimize(map->TranslateExt(sentences[i % sentences.size()]));
    state.SetItemsProcessed(state.iterations() * kKeysTranslated);
}
BENCHMARK(BM_TranslateExt_Sentences)->Unit(benchmark::kMillisecond);

void BM_Merge_LanguageFile(benchmark::State& state) {
    Files const& files = FilesOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        int newEntries = 0;
        int const result = BLanguageMap::MergeMapFile(files.Path("/ref"), files.Path("/old"),
                                                      files.Path("/new"), u"lang.lng", newEntries);
        if (result != 0 || newEntries != files.entries / 10)
            state.SkipWithError("merge failed");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Merge_LanguageFile)->Apply(Sizes);

void BM_Merge_Msgmerge(benchmark::State& state) {
    Files const& files = FilesOf(static_cast<int>(state.range(0)));
    std::string const command = "msgmerge --no-fuzzy-matching --quiet -o '" + files.dir +
                                "/new/lang.po' '" + files.dir + "/old/lang.po' '" + files.dir +
                                "/ref/lang.pot'";
    for (auto _ : state)
        if (std::system(command.c_str()) != 0)
            state.SkipWithError("msgmerge failed");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Merge_Msgmerge)->Arg(2'000)->Arg(20'000)->Unit(benchmark::kMillisecond);

} // namespace
