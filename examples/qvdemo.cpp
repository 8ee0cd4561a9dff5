// qvdemo: how an application module uses the library's core. Objects are shared through SP,
// asked for their class names, errors are thrown and stored, and strings are converted and
// compared the way the measuring application does it.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <qv/qvcore.h>
#include <qv/tree/BNode.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

// A storable measurement object of the application's own.
class BScanPoint : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BScanPoint)

    BScanPoint(double x, double y, double z) : m_x(x), m_y(y), m_z(z) {}
    int Version() const override { return 2; }
    void WriteData(BArchive& archive) const override { archive << m_x << m_y << m_z; }
    static SP<BSmartObj> Read(BArchive& archive, int) {
        SP<BScanPoint> point = new BScanPoint(0, 0, 0);
        archive >> point->m_x >> point->m_y >> point->m_z;
        return point;
    }
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

// The calibration that several scans share: stored once, loaded as one instance.
class BCalibration : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BCalibration)

    explicit BCalibration(WString camera = WString()) : m_camera(camera) {}
    void WriteData(BArchive& archive) const override { archive << m_camera; }
    static SP<BSmartObj> Read(BArchive& archive, int) {
        SP<BCalibration> calibration = new BCalibration;
        archive >> calibration->m_camera;
        return calibration;
    }
    WString m_camera;
};
QV_REGISTER_CLASSNAME(BCalibration);

// A named attribute of a node, here the colour a scan is drawn in.
class BColourAttribute : public BAttribute {
public:
    QV_DECLARE_CLASSNAME(BColourAttribute)

    explicit BColourAttribute(std::uint32_t rgb = 0) : m_rgb(rgb) {}
    WString Name() const override { return WString(u"colour"); }
    void WriteData(BArchive& archive) const override { archive << m_rgb; }
    static SP<BSmartObj> Read(BArchive& archive, int) {
        SP<BColourAttribute> colour = new BColourAttribute;
        archive >> colour->m_rgb;
        return SP<BSmartObj>(static_cast<BSmartObj*>(colour.get()));
    }
    std::uint32_t m_rgb;
};
QV_REGISTER_CLASSNAME(BColourAttribute);

[[maybe_unused]] bool const registered = [] {
    RegisterArchiveCallback(BScanPoint::CLASSNAME(), &BScanPoint::Read);
    RegisterArchiveCallback(BCalibration::CLASSNAME(), &BCalibration::Read);
    RegisterArchiveCallback(BColourAttribute::CLASSNAME(), &BColourAttribute::Read);
    return true;
}();

void Print(char const* label, WString const& text) {
    std::printf("%-28s %s\n", label, text.ToUtf8().c_str());
}

std::string Describe(BSmartObj* object) {
    if (auto* point = dynamic_cast<BScanPoint*>(object))
        return point->Describe();
    if (auto* calibration = dynamic_cast<BCalibration*>(object))
        return "calibration of " + calibration->m_camera.ToUtf8() + " #" +
               std::to_string(calibration->UniqueID());
    return object ? object->ClassName() : "";
}

void PrintTree(BNode* node, int depth) {
    std::printf("  %*s%s", depth * 2, "", WString(node->GetText()).ToUtf8().c_str());
    if (node->GetObj())
        std::printf("  [%s]", Describe(node->GetObj()).c_str());
    if (auto* colour = dynamic_cast<BColourAttribute*>(node->Attrib(u"colour")))
        std::printf("  colour %06x", colour->m_rgb);
    std::printf("\n");
    for (BNode* child = node->Child(0); child; child = child->Sister())
        PrintTree(child, depth + 1);
}

// The road of one typical request: a measurement tree with shared objects is stored in an
// object archive and loaded again, by name and by id.
void StoreAndLoadTree(std::filesystem::path const& samples) {
    SP<BNode> project = new BNode;
    project->SetText(u"Project");
    SP<BCalibration> left = new BCalibration(WString(u"left camera"));
    BNode* scans = project->QueryChild(u"Scans");
    for (int i = 1; i <= 3; ++i) {
        BNode* scan = scans->QueryChild(scans->ChildTextSuggestion(u"Scan"));
        scan->SetObj(new BScanPoint(i * 1.5, -i * 0.25, 100.0 + i));
        scan->AddAttrib(new BColourAttribute(0x20a0f0u * static_cast<std::uint32_t>(i)));
        scan->QueryChild(u"Calibration")->SetObj(left);
    }
    std::printf("\nmeasurement tree as built:\n");
    PrintTree(project, 0);

    std::string path = (samples / "project.qva").string();
    WString widePath = WString::FromUtf8(path);
    {
        BQuorvelArchive archive(widePath.CStr(), BArchive::WRITE, BString("class QvDemoProject"),
                                1);
        archive.Insert(project, "project");
    } // the destructor flushes
    std::printf("\nstored in %s (%llu bytes)\n", path.c_str(),
                static_cast<unsigned long long>(std::filesystem::file_size(path)));

    BQuorvelArchive byName(widePath.CStr(), BArchive::READ, BString("class QvDemoProject"), 1);
    SP<BNode> loaded = byName.TakeOut("project");
    std::printf("loaded by name, %s:\n", loaded ? "whole" : "FAILED");
    if (loaded)
        PrintTree(loaded, 0);
    BNode* first = loaded ? loaded->Child(u"Scans/Scan001/Calibration") : nullptr;
    BNode* third = loaded ? loaded->Child(u"Scans/Scan003/Calibration") : nullptr;
    std::printf("shared calibration loaded once: %s\n",
                first && third && first->GetObj() == third->GetObj() ? "yes" : "no");

    BQuorvelArchive byId(widePath.CStr(), BArchive::READ, BString("class QvDemoProject"), 1);
    SP<BNode> root = byId.TakeOut("1");
    std::printf("loaded by id \"1\": %s with %d child\n",
                root ? WString(root->GetText()).ToUtf8().c_str() : "nothing",
                root ? root->ChildNum() : 0);
}

// A sample of every other file the library writes, for qvtool to show: the tree again as a
// stream archive, a measuring head's sensor file with two camera files, a binary profile, a
// language file, the registry store and a profiler log.
void WriteSamples(std::filesystem::path const& samples) {
    auto wide = [&samples](char const* name) {
        return WString::FromUtf8((samples / name).string());
    };
    {
        // A self-contained branch of library classes, which any reader can follow.
        SP<BNode> head = new BNode;
        head->SetText(u"Head");
        for (char16_t const* camera : {u"Camera 0", u"Camera 1"})
            head->QueryChild(camera);
        BOStreamArchive stream(wide("head.qvs"), WString(u"QvDemoHead"));
        stream.Insert(head, "head");
        stream.Insert(nullptr, "none");
    }
    BProfiler::SetLogfilePath(WString::FromUtf8((samples / "profiler").string() + "/"));
    BProfiler::Start(u"writing samples");

    BProfile::WriteString(wide("head/sensor.ini"), u"Quorvel Imaging Device 0", u"File",
                          u"cam0.ini");
    BProfile::WriteString(wide("head/sensor.ini"), u"Quorvel Imaging Device 1", u"File",
                          u"cam1.ini");
    for (char const* camera : {"head/cam0.ini", "head/cam1.ini"}) {
        BCamProfile profile(wide(camera), u"Current");
        profile.WriteVendor(u"Quorvel");
        profile.WriteShutter(camera[8] == '0' ? 20 : 24);
        profile.WriteGamma(1.5f);
    }
    BSensorProfile sensor(wide("head/sensor.ini"));
    sensor.SetCorpusFixed();
    sensor.SetStereo();
    BProfiler::Step(u"measuring head");

    {
        BBinProfile settings(wide("settings.bin"), kProfileNew);
        settings.SetSection(u"Scanner");
        settings.WriteInt(u"Exposure", 12);
        settings.WriteDouble(u"Gamma", 1.8);
        settings.WriteBoolean(u"Fringes", true);
        settings.WriteString(u"Operator", u"Ana Süd");
    }
    BLanguageMap texts;
    texts.Add(u"$IDS_Scan", u"Scan", u"Messung", true, true);
    texts.Add(u"$IDS_Camera", u"Camera", u"Kamera", true, true);
    texts.Add(u"$ERR_FILE_ERROR", u"File error", u"Dateifehler", true, true);
    std::filesystem::create_directories(samples / "deutsch");
    texts.ExportMapFile(wide("deutsch/texts.txt"));
    BProfiler::Step(u"profiles and texts");

    BConfigRegistry::SetStoreDirectory(wide("registry"));
    BConfigRegistry(WString(u"HKCU\\Software\\QvDemo")).WriteDouble(u"LastScanMm", 103.0);
    BConfigRegistry::SetStoreDirectory(WString());
    BProfiler::Stop(u"writing samples");
    BProfiler::SetLogfilePath(WString());
    std::printf("\nsample files of every format written to %s\n", samples.string().c_str());
}

} // namespace

// With a directory argument the sample files stay there for qvtool to look into; without one
// they go to a scratch directory that is removed at the end.
int main(int argc, char** argv) {
    std::printf("qvcore demonstration\n\n");
    bool keep = argc > 1;
    std::filesystem::path samples =
        keep ? std::filesystem::path(argv[1])
             : std::filesystem::temp_directory_path() / ("qvdemo-" + std::to_string(getpid()));
    std::filesystem::create_directories(samples);

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

    StoreAndLoadTree(samples);
    WriteSamples(samples);
    if (!keep)
        std::filesystem::remove_all(samples);
    return 0;
}
