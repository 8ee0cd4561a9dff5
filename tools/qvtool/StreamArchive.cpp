// A stream archive has no index: its objects are read one after the other, and an object of a
// class this program cannot read ends the walk, since its length is unknown.
#include "Formats.h"
#include "ObjectArchive.h"

namespace qvtool::stream_archive {

namespace {

struct Walk {
    json objects = json::array();
    std::string stop; // why the walk ended early, empty when it reached the end
};

Walk Objects(std::string const& path, BArchiveInspector const& header) {
    Walk walk;
    try {
        BIStreamArchive archive(Wide(path).c_str(), header.StreamName());
        while (archive.IsGood()) {
            SP<BSmartObj> object = archive.TakeOut("");
            if (!archive.IsGood() || archive.AtEnd())
                break;
            if (!object) {
                walk.objects.push_back(nullptr);
                continue;
            }
            json entry = {{"class", object->ArchiveName()}};
            if (auto* node = dynamic_cast<BNode*>(object.get()))
                entry["tree"] = object_archive::NodeTree(*node);
            walk.objects.push_back(entry);
        }
    } catch (BError const& error) {
        walk.stop = "object " + std::to_string(walk.objects.size() + 1) +
                    " cannot be read (error " + std::to_string(error.Error()) +
                    "): its class is unknown here or its data is damaged";
    }
    return walk;
}

json Header(BArchiveInspector const& header) {
    return {{"name", Utf8(header.StreamName())},
            {"format version", header.FormatVersion()},
            {"file size", header.FileSize()}};
}

} // namespace

json Info(std::string const& path) {
    BArchiveInspector header(Wide(path).c_str());
    json info = Header(header);
    Walk walk = Objects(path, header);
    info["objects"] = walk.objects.size();
    info["sound"] = header.IsSound() && walk.stop.empty();
    return info;
}

json Dump(std::string const& path) {
    BArchiveInspector header(Wide(path).c_str());
    Walk walk = Objects(path, header);
    json dump = {{"header", Header(header)}, {"objects", walk.objects}};
    if (!walk.stop.empty())
        dump["stopped"] = walk.stop;
    return dump;
}

json Check(std::string const& path) {
    BArchiveInspector header(Wide(path).c_str());
    if (!header.IsSound())
        return {{"sound", false}, {"damage", {{"offset", 0}, {"reason", Utf8(header.Damage())}}}};
    Walk walk = Objects(path, header);
    if (!walk.stop.empty())
        return {{"sound", false},
                {"damage", {{"object", walk.objects.size() + 1}, {"reason", walk.stop}}}};
    return {{"sound", true}, {"objects", walk.objects.size()}};
}

} // namespace qvtool::stream_archive
