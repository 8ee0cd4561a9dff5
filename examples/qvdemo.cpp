// qvdemo: how an application module uses the library's core. Objects are shared through SP,
// asked for their class names, errors are thrown and stored, and strings are converted and
// compared the way the measuring application does it.
#include <cstdio>
#include <map>
#include <qv/qvcore.h>
#include <vector>

namespace {

// A storable measurement object of the application's own.
class BScanPoint : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BScanPoint)

    BScanPoint(double x, double y, double z) : m_x(x), m_y(y), m_z(z) {}
    int Version() const override { return 2; }
    WString Properties() const override {
        return BSmartObj::Properties() + u", " + WString::FromUtf8(Describe());
    }
    std::string Describe() const {
        char text[96];
        std::snprintf(text, sizeof text, "(%.3f, %.3f, %.3f) mm", m_x, m_y, m_z);
        return text;
    }

private:
    double m_x, m_y, m_z;
};
QV_REGISTER_CLASSNAME(BScanPoint);

void Print(char const* label, WString const& text) {
    std::printf("%-28s %s\n", label, text.ToUtf8().c_str());
}

} // namespace

int main() {
    std::printf("qvcore demonstration\n\n");

    // Objects live as long as some SP holds them; plain pointers only borrow.
    SP<BScanPoint> point = new BScanPoint(12.5, -3.25, 101.0);
    std::vector<SP<BSmartObj>> cloud{point, point, new BScanPoint(0, 0, 0)};
    std::printf("%-28s %d owners of object #%ld\n", "shared point:", point->RefCount(),
                point->UniqueID());
    BSmartObj* any = cloud[2];
    std::printf("%-28s %s, version %d, id %s\n", "dynamic class name:", any->ClassName(),
                any->Version(), BSmartObj::Id(any->UniqueID()).CStr());
    Print("properties:", point->Properties());

    // A checked conversion gives null for an object of another type.
    SP<BSmartObj> base = new BError(5);
    SP<BScanPoint> wrong = base;
    std::printf("%-28s %s\n", "checked conversion:", wrong ? "converted" : "null, as it must");

    // Errors travel as BError and can be stored for later.
    BError stored;
    try {
        BError::Test(BError::kArchiveFileError, u"BIStreamArchive", WString::FromUtf8("scan.qva"));
    } catch (BError const& e) {
        stored = e;
    }
    std::printf("%-28s code %d, arguments \"%s\" \"%s\"\n", "stored error:", stored.Error(),
                stored.Argument(0).ToUtf8().c_str(), stored.Argument(1).ToUtf8().c_str());
    try {
        Sizet_byte(300);
    } catch (BError const& e) {
        std::printf("%-28s code %d from %s\n", "narrowing refused:", e.Error(),
                    e.Argument(0).ToUtf8().c_str());
    }

    // Strings: UTF-16 inside, UTF-8 and the ANSI code page at the edges.
    WString path = WString::FromUtf8("Sensoren\\Kamera_Süd\\cam1.ini");
    WString directory = path;
    WString fileName;
    directory.Split(fileName, u'\\', false);
    Print("path:", path);
    Print("directory part:", directory);
    Print("file part:", fileName.Sub(1));
    BString ansi = path.AsString();
    std::printf("%-28s %llu bytes in the ANSI code page\n",
                "narrow form:", static_cast<unsigned long long>(ansi.Length()));

    // Keys compare case-blind under the locale rule, so they order a map the way users expect.
    std::map<WString, int, WString::ILess> exposures;
    for (char const* name : {"Kamera_B", "kamera_a", "KAMERA_C", "kamera_b"})
        exposures[WString::FromUtf8(name)] += 1;
    std::printf("%-28s", "case-blind keys:");
    for (auto const& [name, count] : exposures)
        std::printf(" %s=%d", name.ToUtf8().c_str(), count);
    std::printf("\n");
    std::printf("%-28s %s\n", "token 2 of \"a;b;c\":", BString("a;b;c").Token(2, ';').CStr());
    return 0;
}
