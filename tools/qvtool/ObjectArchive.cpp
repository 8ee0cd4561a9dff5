#include "ObjectArchive.h"

#include "ProgressBar.h"

#include <filesystem>

namespace qvtool::object_archive {

namespace {

BArchiveInspector Inspect(std::string const& path) {
    std::error_code error;
    auto size = static_cast<long long>(std::filesystem::file_size(path, error));
    return BArchiveInspector(Wide(path).c_str(), ProgressBarFor(error ? 0 : size));
}

json Header(BArchiveInspector const& archive) {
    return {{"name", Utf8(archive.Name())},
            {"application version", archive.ApplicationVersion()},
            {"format version", archive.FormatVersion()},
            {"file size", archive.FileSize()}};
}

json RecordDocument(BArchiveInspector::Record const& record) {
    return {{"id", Utf8(record.id)},           {"name", Utf8(record.name)},
            {"class", Utf8(record.className)}, {"version", record.version},
            {"offset", record.offset},         {"size", record.size}};
}

json Damage(BArchiveInspector const& archive) {
    json damage = {{"offset", archive.DamageOffset()}, {"reason", Utf8(archive.Damage())}};
    if (archive.IsArchive())
        damage["record"] = archive.Records().size() + 1;
    return damage;
}

bool IsNode(BArchiveInspector::Record const& record) {
    return record.className == BString("class BNode");
}

char const* ClassOf(BSmartObj const* object) {
    return object ? object->ArchiveName() : nullptr;
}

} // namespace

json NodeTree(BNode const& node) {
    json tree = {{"text", Utf8(WString(node.GetText()))}, {"active", node.IsActive()}};
    if (char const* objectClass = ClassOf(node.GetObj()))
        tree["object"] = objectClass;
    json attributes = json::array();
    for (int i = 0; i < node.AttribNum(); ++i)
        if (BAttribute const* attribute = node.Attrib(i))
            attributes.push_back(Utf8(attribute->Name()));
    if (!attributes.empty())
        tree["attributes"] = attributes;
    if (node.AnnotationNum() > 0)
        tree["annotations"] = node.AnnotationNum();
    json children = json::array();
    for (int i = 0; i < node.ChildNum(); ++i)
        if (BNode const* child = node.Child(i))
            children.push_back(NodeTree(*child));
    if (!children.empty())
        tree["children"] = children;
    return tree;
}

json Info(std::string const& path) {
    BArchiveInspector archive = Inspect(path);
    json info = Header(archive);
    info["records"] = archive.Records().size();
    info["sound"] = archive.IsSound();
    return info;
}

json Dump(std::string const& path) {
    BArchiveInspector archive = Inspect(path);
    json records = json::array();
    for (auto const& record : archive.Records())
        records.push_back(RecordDocument(record));
    json dump = {{"header", Header(archive)}, {"records", records}};
    if (!archive.IsSound())
        dump["damage"] = Damage(archive);
    // Named nodes are the tops of trees; each is loaded with what it refers to and drawn.
    BQuorvelArchive loader(Wide(path).c_str(), BArchive::READ, archive.Name(),
                           archive.ApplicationVersion());
    json trees = json::array();
    for (auto const& record : archive.Records()) {
        if (!loader.IsGood() || !IsNode(record) || record.name.IsEmpty())
            continue;
        SP<BNode> node = loader.TakeOut(record.name.CStr());
        if (node)
            trees.push_back({{"name", Utf8(record.name)}, {"tree", NodeTree(*node)}});
    }
    if (!trees.empty())
        dump["trees"] = trees;
    return dump;
}

json Check(std::string const& path) {
    BArchiveInspector archive = Inspect(path);
    if (!archive.IsSound())
        return {{"sound", false}, {"damage", Damage(archive)}};
    // The prefixes are whole; now every record of a class this library reads must load.
    BQuorvelArchive loader(Wide(path).c_str(), BArchive::READ, archive.Name(),
                           archive.ApplicationVersion());
    for (std::size_t i = 0; i < archive.Records().size(); ++i) {
        auto const& record = archive.Records()[i];
        if (!BArchive::SmartObjReadFunction(record.className))
            continue;
        if (!loader.TakeOut(record.id.CStr()))
            return {{"sound", false},
                    {"damage",
                     {{"record", i + 1},
                      {"offset", record.offset},
                      {"reason", "the record of " + Utf8(record.className) + " id " +
                                     Utf8(record.id) + " does not load"}}}};
    }
    return {{"sound", true}, {"records", archive.Records().size()}};
}

} // namespace qvtool::object_archive
