// Storable classes and helpers shared by the archive suites, the archive fuzzer and the
// archive benchmark. ArchiveItem holds every kind of reference a node holds: an owning
// reference, a list of children, a list of objects with BSmartObj as a virtual base and a plain
// parent pointer.
#pragma once

#include <cstdint>
#include <qv/core/containers/DList.h>
#include <qv/persistence/BArchive.h>
#include <string>
#include <unordered_set>
#include <vector>

// The node lists are DLists; tests reach an element by its index.
template <class T>
class TestList : public DList<T> {
public:
    T const& operator[](int i) const { return this->PositionAt(i).Value(); }
};

// Puts some data in front of the virtual base, so that the BSmartObj part of an ArchiveTag
// does not start at the object's address.
struct ArchiveMixin : virtual BSmartObj {
    std::int64_t m_padding[3] = {};
};

class ArchiveTag : public ArchiveMixin, public virtual BSmartObj {
public:
    QV_DECLARE_CLASSNAME(ArchiveTag)
    explicit ArchiveTag(std::int32_t value = 0) : m_value(value) {}
    void WriteData(BArchive& archive) const override { archive << m_value; }
    static SP<BSmartObj> Read(BArchive& archive, int) {
        SP<ArchiveTag> tag = new ArchiveTag;
        archive >> tag->m_value;
        return SP<BSmartObj>(tag);
    }
    std::int32_t m_value;
};

class ArchiveItem : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(ArchiveItem)
    explicit ArchiveItem(std::u16string_view text = {}) : m_text(text) { Live().insert(this); }
    ~ArchiveItem() override { Live().erase(this); }

    // A damaged file can describe a cycle of owning references (an item that is its own
    // child), which keeps itself alive as any such cycle of counted objects does. Callers that
    // load hostile files clear the references of every item left once they are done.
    static std::unordered_set<ArchiveItem*>& Live() {
        static std::unordered_set<ArchiveItem*> live;
        return live;
    }
    static void BreakCycles() {
        std::vector<SP<ArchiveItem>> left(Live().begin(), Live().end());
        for (auto const& item : left) {
            item->m_object = nullptr;
            item->m_children.RemoveAll();
            item->m_tags.RemoveAll();
        }
    }

    int Version() const override { return 3; }
    void WriteData(BArchive& archive) const override {
        archive.WriteObjectRef(m_object);
        archive.WriteObjectList(m_children);
        archive.WriteObjectList(m_tags);
        archive.WriteIndex(m_parent);
        archive << m_text << m_value;
    }
    static SP<BSmartObj> Read(BArchive& archive, int version) {
        return ReadAs<ArchiveItem>(archive, version);
    }
    template <class T>
    static SP<BSmartObj> ReadAs(BArchive& archive, int) {
        SP<ArchiveItem> item = new T;
        archive.ReadObjectRef(item->m_object);
        archive.ReadObjectList(item->m_children);
        archive.ReadObjectList(item->m_tags);
        archive.ReadIndex(item->m_parent);
        archive >> item->m_text >> item->m_value;
        return SP<BSmartObj>(item);
    }
    void UpdateAssociations(BArchive& archive) override {
        archive.ResolveObjectRef(m_object);
        archive.ResolveObjectList(m_children);
        archive.ResolveObjectList(m_tags);
        archive.ResolveIndex(m_parent);
        ++m_updates;
    }
    bool VerifyObj() override { return m_sound; }

    ArchiveItem* Add(SP<ArchiveItem> const& child) {
        child->m_parent = this;
        m_children.AddTail(child);
        return child;
    }

    SP<BSmartObj> m_object;
    TestList<SP<ArchiveItem>> m_children;
    TestList<SP<ArchiveTag>> m_tags;
    ArchiveItem* m_parent = nullptr;
    WString m_text;
    std::int32_t m_value = 0;
    int m_updates = 0;
    bool m_sound = true;
};

// An item's text, or "<null>" for one that did not load.
inline std::string Text(ArchiveItem const* item) {
    return item ? item->m_text.ToUtf8() : "<null>";
}
// The texts of an item's children, with blanks between.
inline std::string Kids(ArchiveItem const& item) {
    std::string out;
    for (auto const& child : item.m_children)
        out += (out.empty() ? "" : " ") + Text(child);
    return out;
}

inline bool const archive_test_classes_registered = [] {
    ClassNameRegistry::Register(typeid(ArchiveTag), "class ArchiveTag");
    ClassNameRegistry::Register(typeid(ArchiveItem), "class ArchiveItem");
    RegisterArchiveCallback("class ArchiveTag", &ArchiveTag::Read);
    RegisterArchiveCallback("class ArchiveItem", &ArchiveItem::Read);
    return true;
}();
