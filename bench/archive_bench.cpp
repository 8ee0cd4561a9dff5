// Writing and loading object archives of 10,000 to 1,000,000 objects: a tree of four children
// per node, a plain parent pointer in each, and one object shared by every tenth node. With
// Boost.Serialization installed, its binary archive stores the same tree side by side.
#include <benchmark/benchmark.h>
#include <cstdint>
#include <filesystem>
#include <list>
#include <map>
#include <memory>
#include <qv/core/containers/DList.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <string>
#include <vector>

#ifdef QV_BENCH_WITH_BOOST
#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#include <boost/serialization/list.hpp>
#include <boost/serialization/shared_ptr.hpp>
#include <boost/serialization/string.hpp>
#include <fstream>
#endif

namespace {

class BenchNode : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BenchNode)
    void WriteData(BArchive& a) const override {
        a.WriteObjectRef(m_object);
        a.WriteObjectList(m_children);
        a.WriteIndex(m_parent);
        a << m_text << m_value;
    }
    static SP<BSmartObj> Read(BArchive& a, int) {
        SP<BenchNode> node = new BenchNode;
        a.ReadObjectRef(node->m_object);
        a.ReadObjectList(node->m_children);
        a.ReadIndex(node->m_parent);
        a >> node->m_text >> node->m_value;
        return SP<BSmartObj>(node);
    }
    void UpdateAssociations(BArchive& a) override {
        a.ResolveObjectRef(m_object);
        a.ResolveObjectList(m_children);
        a.ResolveIndex(m_parent);
    }

    SP<BSmartObj> m_object;
    DList<SP<BenchNode>> m_children;
    BenchNode* m_parent = nullptr;
    WString m_text;
    std::int32_t m_value = 0;
};
QV_REGISTER_CLASSNAME(BenchNode);
bool const registered = (RegisterArchiveCallback("class BenchNode", &BenchNode::Read), true);

std::string Scratch(char const* name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

// The text of node i. (Built without operator+, on which g++ 12 warns falsely at -O3.)
std::string Label(std::size_t i) {
    std::string text = std::to_string(i);
    text.insert(text.begin(), 'n');
    return text;
}

std::u16string Wide(std::string const& path) {
    return std::u16string(path.begin(), path.end());
}

// The tree of n nodes, made once per size.
SP<BenchNode> Tree(std::int64_t n) {
    static std::map<std::int64_t, SP<BenchNode>> trees;
    SP<BenchNode>& root = trees[n];
    if (root)
        return root;
    std::vector<SP<BenchNode>> nodes(static_cast<std::size_t>(n));
    SP<BenchNode> shared = new BenchNode;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        nodes[i] = new BenchNode;
        nodes[i]->m_text = WString::FromUtf8(Label(i));
        nodes[i]->m_value = static_cast<std::int32_t>(i);
        if (i % 10 == 0)
            nodes[i]->m_object = SP<BSmartObj>(shared);
        if (i > 0) {
            nodes[i]->m_parent = nodes[(i - 1) / 4];
            nodes[(i - 1) / 4]->m_children.AddTail(nodes[i]);
        }
    }
    root = nodes[0];
    return root;
}

void Store(SP<BenchNode> const& root, std::string const& path) {
    BQuorvelArchive out(Wide(path).c_str(), BArchive::WRITE, "class Bench", 1);
    out.Insert(root, "root");
}

void BM_QvWrite(benchmark::State& state) {
    SP<BenchNode> root = Tree(state.range(0));
    std::string const path = Scratch("qv-bench-write.qva");
    for (auto _ : state)
        Store(root, path);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_QvLoad(benchmark::State& state) {
    std::string const path = Scratch("qv-bench-load.qva");
    Store(Tree(state.range(0)), path);
    for (auto _ : state) {
        BQuorvelArchive in(Wide(path).c_str(), BArchive::READ, "class Bench", 0);
        SP<BSmartObj> root = in.TakeOut("root");
        if (!root)
            state.SkipWithError("nothing loaded");
        benchmark::DoNotOptimize(root.get());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

#define QV_SIZES ->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)
BENCHMARK(BM_QvWrite) QV_SIZES;
BENCHMARK(BM_QvLoad) QV_SIZES;

#ifdef QV_BENCH_WITH_BOOST
struct BoostNode {
    std::shared_ptr<BoostNode> object;
    std::list<std::shared_ptr<BoostNode>> children;
    BoostNode* parent = nullptr;
    std::wstring text;
    std::int32_t value = 0;

    template <class Archive>
    void serialize(Archive& a, unsigned) {
        a& object& children& parent& text& value;
    }
};

std::shared_ptr<BoostNode> BoostTree(std::int64_t n) {
    static std::map<std::int64_t, std::shared_ptr<BoostNode>> trees;
    std::shared_ptr<BoostNode>& root = trees[n];
    if (root)
        return root;
    std::vector<std::shared_ptr<BoostNode>> nodes(static_cast<std::size_t>(n));
    auto shared = std::make_shared<BoostNode>();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        nodes[i] = std::make_shared<BoostNode>();
        std::string text = Label(i);
        nodes[i]->text.assign(text.begin(), text.end());
        nodes[i]->value = static_cast<std::int32_t>(i);
        if (i % 10 == 0)
            nodes[i]->object = shared;
        if (i > 0) {
            nodes[i]->parent = nodes[(i - 1) / 4].get();
            nodes[(i - 1) / 4]->children.push_back(nodes[i]);
        }
    }
    root = nodes[0];
    return root;
}

void BoostStore(std::shared_ptr<BoostNode> const& root, std::string const& path) {
    std::ofstream file(path, std::ios::binary);
    boost::archive::binary_oarchive out(file);
    out << root;
}

void BM_BoostWrite(benchmark::State& state) {
    auto root = BoostTree(state.range(0));
    std::string const path = Scratch("qv-bench-write.boost");
    for (auto _ : state)
        BoostStore(root, path);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_BoostLoad(benchmark::State& state) {
    std::string const path = Scratch("qv-bench-load.boost");
    BoostStore(BoostTree(state.range(0)), path);
    for (auto _ : state) {
        std::ifstream file(path, std::ios::binary);
        boost::archive::binary_iarchive in(file);
        std::shared_ptr<BoostNode> root;
        in >> root;
        benchmark::DoNotOptimize(root.get());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_BoostWrite) QV_SIZES;
BENCHMARK(BM_BoostLoad) QV_SIZES;
#endif

} // namespace
