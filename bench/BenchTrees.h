// The tree that the archive benchmarks store and load, on our side and in the form
// Boost.Serialization stores, and a measure of the heap a loaded tree takes. A tree of n nodes
// is a root with n / 100 branches of 99 leaves; every tenth node holds one shared object.
#pragma once

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <qv/persistence/BArchive.h>
#include <qv/persistence/BReadObjCallbackMap.h>
#include <qv/tree/BNode.h>

#ifdef QV_BENCH_WITH_BOOST
#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#include <boost/serialization/shared_ptr.hpp>
#include <boost/serialization/string.hpp>
#include <boost/serialization/vector.hpp>
#endif

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace bench_trees {

inline std::string TempFile(char const* name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

// Bytes of the heap in use now, as the allocator counts them: in its arena and in blocks it
// mapped on their own (large allocations, such as the blocks loaded nodes are placed in).
inline double HeapInUse() {
    struct mallinfo2 const info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

// The sizes, the unit and the running time every case shares. Every case runs for at least a
// second: at the default half second a tree of 1,000,000 nodes is written or loaded only
// twice, and the first pass over heap pages freshly taken from the system (after the setup's
// own tree) then weighs as much as the work itself, on both sides.
inline void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->MinTime(1.0);
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
[[maybe_unused]] inline bool const classNamed =
    ClassNameRegistry::Register(typeid(BCalibrationValue), BCalibrationValue::CLASSNAME());
[[maybe_unused]] inline bool const registered =
    (RegisterArchiveCallback(BCalibrationValue::CLASSNAME(), &BCalibrationValue::Read), true);

inline SP<BNode> BuildTree(long nodes) {
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

inline std::shared_ptr<Node> BuildBoostTree(long nodes) {
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

inline void WriteBoost(std::shared_ptr<Node> const& root, std::string const& path) {
    std::ofstream out(path, std::ios::binary);
    boost::archive::binary_oarchive archive(out);
    archive << root;
}

inline std::shared_ptr<Node> LoadBoost(std::string const& path) {
    std::shared_ptr<Node> root;
    std::ifstream in(path, std::ios::binary);
    boost::archive::binary_iarchive archive(in);
    archive >> root;
    return root;
}

// Reads the tree back as many times as the case runs; the heap the loaded tree holds per node
// goes to the counter bytes_per_node.
inline void BoostLoadCase(benchmark::State& state, std::string const& path) {
    for (auto _ : state) {
        double before = HeapInUse();
        std::shared_ptr<Node> root = LoadBoost(path);
        benchmark::DoNotOptimize(root.get());
        state.PauseTiming(); // freeing the tree is not loading it, on either side
        state.counters["bytes_per_node"] =
            (HeapInUse() - before) / static_cast<double>(state.range(0));
        root.reset();
        state.ResumeTiming();
    }
}
#endif

} // namespace bench_trees
