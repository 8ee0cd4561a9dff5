// Writing and loading trees of nodes through an object archive, side by side with
// Boost.Serialization's binary archive of the same tree. A tree of n nodes is a root with
// n / 100 branches of 99 leaves; every tenth node holds one shared object, which both archives
// must store once and load as one instance.
//
// Every case runs for at least a second: at the default half second a tree of 1,000,000 nodes
// is written or loaded only twice, and the first pass over heap pages freshly taken from the
// system (after the setup's own tree) then weighs as much as the work itself, on both sides.
#include <benchmark/benchmark.h>
#include <qv/persistence/BQuorvelArchive.h>
#include <qv/persistence/BReadObjCallbackMap.h>
#include <qv/tree/BNode.h>

#ifdef QV_BENCH_WITH_BOOST
#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#include <boost/serialization/shared_ptr.hpp>
#include <boost/serialization/string.hpp>
#include <boost/serialization/vector.hpp>
#endif

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

std::string TempFile(char const* name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

class BCalibrationValue : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BCalibrationValue)
    void WriteData(BArchive& archive) const override { archive << m_scale << m_offset; }
    static SP<BSmartObj> Read(BArchive& archive, int) {
        SP<BCalibrationValue> value = new BCalibrationValue;
        archive >> value->m_scale >> value->m_offset;
        return value;
    }
    double m_scale = 1.0, m_offset = 0.0;
};
QV_REGISTER_CLASSNAME(BCalibrationValue);
[[maybe_unused]] bool const registered =
    (RegisterArchiveCallback(BCalibrationValue::CLASSNAME(), &BCalibrationValue::Read), true);

SP<BNode> BuildTree(long nodes) {
    SP<BCalibrationValue> shared = new BCalibrationValue;
    SP<BNode> root = new BNode;
    root->IsMessageDispatcher(false);
    long made = 1;
    while (made < nodes) {
        SP<BNode> branch = new BNode;
        branch->SetText(WString(BString("branch")));
        root->AddChild(branch, -1);
        for (int leaf = 0; leaf < 99 && ++made < nodes; ++leaf) {
            SP<BNode> node = new BNode(made % 10 == 0 ? shared.get() : nullptr);
            node->SetText(u"leaf");
            branch->AddChild(node, -1);
        }
        ++made;
    }
    return root;
}

void WriteQv(BNode* root, WString const& path) {
    BQuorvelArchive archive(path.CStr(), BArchive::WRITE, BString("class BenchTree"), 1);
    archive.Insert(root, "tree");
}

// The sizes, the unit and the running time every case shares.
void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->MinTime(1.0);
}

void Qv_Write(benchmark::State& state) {
    SP<BNode> root = BuildTree(state.range(0));
    WString path = WString::FromUtf8(TempFile("qv_bench_tree.qva"));
    for (auto _ : state)
        WriteQv(root, path);
    state.counters["nodes"] = static_cast<double>(state.range(0));
}

void Qv_Load(benchmark::State& state) {
    WString path = WString::FromUtf8(TempFile("qv_bench_tree.qva"));
    WriteQv(BuildTree(state.range(0)), path);
    for (auto _ : state) {
        SP<BNode> root;
        {
            BQuorvelArchive archive(path.CStr(), BArchive::READ, BString("class BenchTree"), 1);
            root = archive.TakeOut("tree");
        } // the archive's teardown is part of loading; the tree outlives it through root
        if (!root || root->ChildNum() == 0)
            state.SkipWithError("load failed");
        benchmark::DoNotOptimize(root.get());
        state.PauseTiming(); // freeing the tree is not loading it, on either side
        root = nullptr;
        state.ResumeTiming();
    }
}

BENCHMARK(Qv_Write)->Apply(Sizes);
BENCHMARK(Qv_Load)->Apply(Sizes);

#ifdef QV_BENCH_WITH_BOOST
// The same tree in the form Boost.Serialization stores: shared pointers are tracked, so the
// shared object is written once, and the parent is a tracked raw pointer.
struct Calibration {
    double scale = 1.0, offset = 0.0;
    template <class A>
    void serialize(A& a, unsigned) {
        a& scale& offset;
    }
};

struct Node {
    std::string narrowText;
    std::u16string text;
    std::shared_ptr<Calibration> object;
    std::vector<std::shared_ptr<Node>> children;
    Node* parent = nullptr;
    bool active = true, locked = false;
    template <class A>
    void serialize(A& a, unsigned) {
        a& narrowText& object& children& parent& active& locked;
        std::size_t n = text.size();
        a& n;
        text.resize(n);
        for (char16_t& c : text)
            a& reinterpret_cast<std::uint16_t&>(c);
    }
};

std::shared_ptr<Node> BuildBoostTree(long nodes) {
    auto shared = std::make_shared<Calibration>();
    auto root = std::make_shared<Node>();
    long made = 1;
    while (made < nodes) {
        auto branch = std::make_shared<Node>();
        branch->text = u"branch";
        branch->narrowText = "branch";
        branch->parent = root.get();
        root->children.push_back(branch);
        for (int leaf = 0; leaf < 99 && ++made < nodes; ++leaf) {
            auto node = std::make_shared<Node>();
            node->text = u"leaf";
            node->narrowText = "leaf";
            node->parent = branch.get();
            if (made % 10 == 0)
                node->object = shared;
            branch->children.push_back(node);
        }
        ++made;
    }
    return root;
}

void Boost_Write(benchmark::State& state) {
    auto root = BuildBoostTree(state.range(0));
    std::string path = TempFile("boost_bench_tree.bin");
    for (auto _ : state) {
        std::ofstream out(path, std::ios::binary);
        boost::archive::binary_oarchive archive(out);
        archive << root;
    }
}

void Boost_Load(benchmark::State& state) {
    std::string path = TempFile("boost_bench_tree.bin");
    {
        auto root = BuildBoostTree(state.range(0));
        std::ofstream out(path, std::ios::binary);
        boost::archive::binary_oarchive archive(out);
        archive << root;
    }
    for (auto _ : state) {
        std::shared_ptr<Node> root;
        {
            std::ifstream in(path, std::ios::binary);
            boost::archive::binary_iarchive archive(in);
            archive >> root;
        }
        benchmark::DoNotOptimize(root.get());
        state.PauseTiming();
        root.reset();
        state.ResumeTiming();
    }
}

BENCHMARK(Boost_Write)->Apply(Sizes);
BENCHMARK(Boost_Load)->Apply(Sizes);
#endif

} // namespace
