// A registry store file is read through the store itself: the file is copied under its root's
// name into a scratch store, and the tree is walked with BConfigRegistry. The walk lists text
// values, which is what configuration trees hold; values of other types are counted only by
// the store's own reader, which the public interface does not offer.
#include "FileKind.h"
#include "Formats.h"

#include <filesystem>
#include <regex>

namespace qvtool::registry_file {

namespace {

namespace fs = std::filesystem;

class ScratchStore {
public:
    explicit ScratchStore(std::string const& path) : m_previous(BConfigRegistry::StoreDirectory()) {
        static std::regex const firstKey(R"(\[(HKEY_[A-Z_]+)[\\\]])");
        std::smatch match;
        std::string head = HeadTextOf(path);
        if (!std::regex_search(head, match, firstKey))
            throw Failure{kExitDamaged, path + ": no key of a registry root"};
        m_root = match[1];
        m_dir = fs::temp_directory_path() / ("qvtool-registry-" + std::to_string(::getpid()));
        fs::create_directories(m_dir);
        fs::copy_file(path, m_dir / (m_root + ".reg"), fs::copy_options::overwrite_existing);
        BConfigRegistry::SetStoreDirectory(WString::FromUtf8(m_dir.string()));
    }
    ~ScratchStore() {
        BConfigRegistry::SetStoreDirectory(m_previous);
        std::error_code error;
        fs::remove_all(m_dir, error);
    }
    std::string const& Root() const { return m_root; }

private:
    WString m_previous;
    std::string m_root;
    fs::path m_dir;
};

json Walk(BConfig const& node, std::size_t& keys, std::size_t& values) {
    json document = json::object();
    BArray<WString> names;
    if (node.QueryKeys(names) == 0) {
        for (WString const& name : names) {
            WString value;
            if (node.ReadString(name, value) == 0) {
                document["values"][name.IsEmpty() ? "@" : Utf8(name)] = Utf8(value);
                ++values;
            }
        }
    }
    BArray<WString> children;
    if (node.QuerySubSections(children) == 0) {
        for (WString const& name : children) {
            ++keys;
            document["keys"][Utf8(name)] = Walk(*node.Child(name), keys, values);
        }
    }
    return document;
}

json Tree(std::string const& path, std::size_t& keys, std::size_t& values) {
    ScratchStore store(path);
    BConfigRegistry root(WString::FromUtf8(store.Root()));
    return {{"root", store.Root()}, {"tree", Walk(root, keys, values)}};
}

} // namespace

json Info(std::string const& path) {
    std::size_t keys = 0, values = 0;
    json tree = Tree(path, keys, values);
    return {{"root", tree["root"]}, {"keys", keys}, {"text values", values}};
}

json Dump(std::string const& path) {
    std::size_t keys = 0, values = 0;
    return Tree(path, keys, values);
}

json Check(std::string const& path) {
    std::size_t keys = 0, values = 0;
    Tree(path, keys, values);
    return {{"sound", true}, {"keys", keys}};
}

} // namespace qvtool::registry_file
