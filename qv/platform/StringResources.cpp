// Implementation details of the string resources.
//
// A module is a table from id to text. The library's table starts with the compiled-in rows
// below, sorted by id; rows loaded from files go into a hash map in front of it. Loaded texts
// live in a deque that only grows, so a pointer handed out by LoadStringW stays valid even when
// a later file replaces its row. A shared mutex lets readers on any thread meet a loader.
#include <qv/platform/StringResources.h>
// Own header above, what it builds on below.
#include <algorithm>
#include <deque>
#include <iterator>
#include <mutex>
#include <qv/platform/FileStream.h>
#include <qv/platform/TextServices.h>
#include <qv/platform/WideStream.h>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>

struct HINSTANCE__ {
    struct Row {
        unsigned int id;
        std::u16string_view text;
    };

    Row const* builtInBegin = nullptr;
    Row const* builtInEnd = nullptr;
    mutable std::shared_mutex mutex;
    std::unordered_map<unsigned int, std::u16string_view> loaded;
    std::deque<std::u16string> texts;

    // The text of a row; false when the table has none.
    bool Find(unsigned int id, std::u16string_view& text) const {
        std::shared_lock lock(mutex);
        if (auto const row = loaded.find(id); row != loaded.end()) {
            text = row->second;
            return true;
        }
        auto const row = std::lower_bound(builtInBegin, builtInEnd, id,
                                          [](Row const& r, unsigned int i) { return r.id < i; });
        if (row == builtInEnd || row->id != id)
            return false;
        text = row->text;
        return true;
    }

    void Set(unsigned int id, std::u16string text) {
        std::unique_lock lock(mutex);
        loaded[id] = texts.emplace_back(std::move(text));
    }
};

namespace {

using Row = HINSTANCE__::Row;

// The rows this library raises, returns or reads itself (error codes and the section names of
// sensor files), and the rows that name the areas of the table, so that an application without
// a table of its own still finds them.
constexpr Row kLibraryRows[] = {
    {5000, u"$ERR_FILE_NOT_EXISTS"},
    {5001, u"$ERR_OPEN_FILE"},
    {5002, u"$ERR_CREATE_FILE"},
    {5003, u"$ERR_READ_FILE"},
    {5004, u"$ERR_WRITE_FILE"},
    {5017, u"$QUESTION_OVERWRITE_EXISTING_FOLDER"},
    {6025, u"StartCommands"},
    {6026, u"Command"},
    {6032, u"AOI"},
    {7000, u"TEST"},
    {7356, u"$ERR_ML_INVALID_ID"},
    {7357, u"$ERR_ML_ID_WITHOUT_TEXT"},
    {7358, u"$ERR_ML_ID_NOT_BIUNIQUE"},
    {7359, u"$ERR_ML_ID_NOT_UNIQUE"},
    {7360, u"$ERR_ML_ERROR"},
    {8002, u"ABSGRAB"},
    {8014, u"SetProjectorIntens"},
    {8035, u"EdgeFind"},
    {9001, u"$ERR_NOTENOUGH_CODEDMARKS"},
    {9354, u"MATCHINIT"},
    {9808, u"Timeout"},
    {10021, u"$ERR_BUFF_MEMALLOC"},
    {10022, u"$ERR_BUFF_MEMLOCK"},
    {11000, u"$ERR_FFT_TOOLESSPOINTS"},
    {11284, u"$ERR_LUT_WRONGTYPE"},
    {12100, u"$ERR_BOARD_METHOD_NOT_SUPPORTED"},
    {12670, u"$ERR_INIT_MEM"},
    {13000, u"$ERR_BASE_LINK"},
    {13512, u"MEDIAN"},
    {14000, u"$ERR_FEXP_FILEOPENEXPORT"},
    {14100, u"FileCopy"},
    {14101, u"$HELP_FILE_COPY_ID"},
    {15275, u"MeshCurvature"},
    {16001, u"$ERR_SOLVE4DIM_INIT"},
    {16010, u"$ERR_ROTATION_INIT"},
    {17000, u"$ERR_PLANETRANS_IREGULAR"},
    {18000, u"MASK"},
    {18001, u"PHASE"},
    {19102, u"CreatePoint"},
    {19103, u"$HELP_CREATE_POINT_ID"},
    {20000, u"STEREO"},
    {20002, u"Left Camera"},
    {21752, u"$CTL_XVIEW90_BUT"},
    {22310, u"$ERR_INIT_MEM"},
    {22867, u"DecimateAoi"},
    {23303, u"$ERR_APP_INIFILE"},
    {24223, u"Report file of function TRAFODATASET"},
    {25000, u"$ERR_OP_MEMGROUP"},
    {25021, u"$ERR_MEM_ALLOC_FAILED"},
    {25070, u"$ERR_USER_STOPS_FUNCTION"},
    {26000, u"DIAGRAMS"},
    {26001, u"FILENAME"},
    {27053, u"$ERR_APERTCAM_NOSET"},
    {27142, u"$ERR_LASERCAM_NOTINIT"},
    {28484, u"CALIBRATION"},
    {28500, u"$ERR_SENSOR_NOTINIT"},
    {28584, u"CAMERACALIB_1"},
    {29201, u"$ERR_GDIPLUS_STATUS"},
    {29315, u"ABSBRIGHT_GRABMODE"},
    {30052, u"$ERR_CALCPC_CPCFILEOPEN"},
    {30150, u"Interactive"},
    {31182, u"$ERR_ARCHIVE_FILE_ERROR"},
    {31825, u"$ERR_FILE_ERROR"},
    {32000, u"CoordSystemNew"},
    {32767, u"$ERR_ERROR"},
    {32987, u"$ERR_SHORT_PATHNAME_EXT"},
    {33102, u"Decimal precision"},
    {34002, u"XMLRoot"},
    {34092, u"Play process failed."},
    {35000, u"XMLFirstChild"},
    {35010, u"CsvFileWriteln"},
    {38521, u"Load LUT"},
    {48370, u"LOAD"},
};

constexpr bool RowsSorted() {
    for (std::size_t i = 1; i < std::size(kLibraryRows); ++i)
        if (kLibraryRows[i - 1].id >= kLibraryRows[i].id)
            return false;
    return true;
}
static_assert(RowsSorted(), "the rows are searched by bisection");

HINSTANCE__& Library() {
    static HINSTANCE__ module{std::begin(kLibraryRows), std::end(kLibraryRows), {}, {}, {}};
    return module;
}

HINSTANCE__& Host() {
    static HINSTANCE__ module;
    return module;
}

HINSTANCE__& Resolve(HMODULE module) {
    return module ? *module : Host();
}

constexpr unsigned int kLastId = 0xFFFF;

// The id of a row line, or false when the text before the tab is no id.
bool ParseId(std::u16string_view digits, unsigned int& id) {
    if (digits.empty() || digits.size() > 5)
        return false;
    id = 0;
    for (char16_t c : digits) {
        if (c < u'0' || c > u'9')
            return false;
        id = id * 10 + (c - u'0');
    }
    return id <= kLastId;
}

} // namespace

namespace qv::platform {

HMODULE GetModuleHandleW(char16_t const* moduleName) {
    if (!moduleName)
        return &Host();
    for (char16_t const* name : {u"qvcore", u"qvcore.dll", u"qvcore.so", u"libqvcore.so"})
        if (StrCmpIW(moduleName, name) == 0)
            return &Library();
    return nullptr;
}

HMODULE LibraryModule() {
    return &Library();
}

int LoadStringW(HMODULE module, unsigned int id, char16_t* buffer, int bufferMax) {
    if (!buffer || bufferMax < 0)
        return 0;
    std::u16string_view text;
    bool const found = id <= kLastId && Resolve(module).Find(id, text);
    if (bufferMax == 0) {
        if (!found)
            return 0;
        *reinterpret_cast<char16_t const**>(buffer) = text.data();
        return static_cast<int>(text.size());
    }
    std::size_t const n = found ? std::min<std::size_t>(text.size(), bufferMax - 1) : 0;
    std::copy_n(text.data(), n, buffer);
    buffer[n] = 0;
    return static_cast<int>(n);
}

int LoadStringTable(HMODULE module, char16_t const* path) {
    std::FILE* stream = nullptr;
    if (_wfopen_s(&stream, path, u"r,ccs=UTF-8") != 0)
        return -1;
    HINSTANCE__& table = Resolve(module);
    int rows = 0;
    std::u16string line;
    char16_t piece[512];
    while (!std::feof(stream) && !std::ferror(stream)) {
        // A line of any length, gathered in pieces; a zero unit cuts its piece short.
        line.clear();
        while (fgetws16(piece, static_cast<int>(std::size(piece)), stream)) {
            line += piece;
            if (!line.empty() && line.back() == u'\n')
                break;
        }
        if (!line.empty() && line.back() == u'\n')
            line.pop_back();
        auto const tab = line.find(u'\t');
        unsigned int id = 0;
        if (tab == std::u16string::npos || !ParseId(std::u16string_view(line).substr(0, tab), id))
            continue;
        table.Set(id, line.substr(tab + 1));
        ++rows;
    }
    std::fclose(stream);
    return rows;
}

} // namespace qv::platform
