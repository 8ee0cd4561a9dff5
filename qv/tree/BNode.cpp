#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <qv/operations/BDispatcher.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/operations/QVPost.h>
#include <qv/persistence/BArchive.h>
#include <qv/platform/TextServices.h>
#include <qv/tree/BNode.h>
#include <qv/tree/BVisitor.h>
#include <typeinfo>
#include <unordered_set>
#include <utility>
#include <vector>

QV_REGISTER_CLASSNAME(BNode);

// Nodes load from archives from the start, before the application registers its own classes.
[[maybe_unused]] static bool const registered =
    (RegisterArchiveCallback(BNode::CLASSNAME(), &BNode::Read), true);

namespace {

unsigned long long Number(void const* p) {
    return static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(p));
}

// Node names compare as shlwapi's StrCmpIW does.
bool SameName(WString const& a, WString const& b) {
    return qv::platform::StrCmpIW(a.CStr(), b.CStr()) == 0;
}

// Loaded nodes are placed side by side in large blocks instead of taking one heap allocation
// each: a load makes a node per record, and taking them from the heap one by one was a good
// part of its time. A block goes back to the heap when the last node in it is destroyed,
// whichever thread that happens on, so a tree frees its blocks with its last node. Each
// thread fills one block at a time; the nodes placed are counted plainly while it fills and
// the count is published when the thread moves on, so placing a node needs no atomic step.
class NodeBlocks {
public:
    static NodeBlocks& OfThread() {
        thread_local NodeBlocks blocks;
        return blocks;
    }
    NodeBlocks() = default;
    NodeBlocks(NodeBlocks const&) = delete;
    NodeBlocks& operator=(NodeBlocks const&) = delete;
    ~NodeBlocks() { Seal(); }

    // Room for an object of the size, at the given alignment (a power of two, at most that
    // of max_align_t).
    void* Take(std::size_t size, std::size_t align) {
        std::size_t pad = (align - reinterpret_cast<std::uintptr_t>(m_next) % align) % align;
        if (!m_block || static_cast<std::size_t>(m_end - m_next) < pad + size) {
            Seal();
            Open(); // the header keeps the first place aligned
            pad = 0;
        }
        void* place = m_next + pad;
        m_next += pad + size;
        ++m_placed;
        return place;
    }

    static void Give(void* place) {
        auto* block = reinterpret_cast<Header*>(reinterpret_cast<std::uintptr_t>(place) &
                                                ~static_cast<std::uintptr_t>(kBlock - 1));
        if (block->live.fetch_sub(1, std::memory_order_acq_rel) == 1)
            Free(block);
    }

private:
    // The block's header, at its start: blocks are aligned to their size, so a node finds
    // its block from its own address.
    struct alignas(64) Header {
        // Nodes alive in the block; while the block fills, kFilling stands in for the ones
        // not yet published.
        std::atomic<long long> live;
    };
    static constexpr std::size_t kBlock = std::size_t{256} * 1024;
    static constexpr long long kFilling = 1LL << 40;

    void Open() {
        void* memory = std::aligned_alloc(kBlock, kBlock);
        if (!memory)
            throw std::bad_alloc();
        m_block = ::new (memory) Header{kFilling};
        m_next = static_cast<char*>(memory) + sizeof(Header);
        m_end = static_cast<char*>(memory) + kBlock;
        m_placed = 0;
    }
    void Seal() {
        if (!m_block)
            return;
        Header* block = std::exchange(m_block, nullptr);
        long long const change = m_placed - kFilling;
        if (block->live.fetch_add(change, std::memory_order_acq_rel) + change == 0)
            Free(block);
    }
    static void Free(Header* block) {
        block->~Header();
        std::free(block);
    }

    Header* m_block = nullptr;
    char* m_next = nullptr;
    char* m_end = nullptr;
    long long m_placed = 0;
};

} // namespace

void BNode::operator delete(BNode* node, std::destroying_delete_t) {
    // Read before the node is gone; the whole object may be of a class derived from ours.
    bool const inBlock = node->m_inBlock;
    void* whole = dynamic_cast<void*>(node);
    node->~BNode();
    if (inBlock)
        NodeBlocks::Give(whole);
    else
        ::operator delete(whole);
}

struct BNode::Decor {
    DList<SP<BAttribute>> attributes;
    DList<SP<BSmartObj>> annotations;

    bool IsEmpty() const { return attributes.IsEmpty() && annotations.IsEmpty(); }
};

BNode::Decor& BNode::EditDecor() {
    if (!m_decor)
        m_decor = std::make_unique<Decor>();
    return *m_decor;
}

DList<SP<BAttribute>>& BNode::EditAttributes() {
    return EditDecor().attributes;
}

DList<SP<BSmartObj>>& BNode::EditAnnotations() {
    return EditDecor().annotations;
}

DList<SP<BAttribute>> const& BNode::Attributes() const {
    static DList<SP<BAttribute>> const none;
    return m_decor ? m_decor->attributes : none;
}

DList<SP<BSmartObj>> const& BNode::Annotations() const {
    static DList<SP<BSmartObj>> const none;
    return m_decor ? m_decor->annotations : none;
}

// ---- construction, copying, destruction -----------------------------------------------------

BNode::BNode(BSmartObj* object) {
    if (object)
        SetObj(object);
}

BNode::BNode(BNode const& other) : BNode(other, true) {}

BNode::BNode(BNode const& other, bool announce) : BSmartObj(other), m_text(other.m_text) {
    CopyFlagsAndDecor(other);
    if (announce && m_object)
        SendMsg(MSG_NODE_OBJECT_CHANGED, this);
    CopyChildren(other, announce);
}

BNode::~BNode() {
    // Children that live on elsewhere become roots; no messages on the way out. A child that
    // only this list holds would die inside this destructor, and a deep branch would use up
    // the stack: the outermost destructor on the thread takes such children over and lets
    // them go one after another.
    thread_local std::vector<SP<BNode>>* graveyard = nullptr;
    std::vector<SP<BNode>> mine;
    bool outermost = graveyard == nullptr;
    if (outermost)
        graveyard = &mine;
    for (SP<BNode>& child : m_children) {
        if (!child)
            continue;
        child->m_parent = nullptr;
        child->m_place = {};
        graveyard->push_back(std::move(child));
    }
    if (!outermost)
        return;
    while (!mine.empty()) {
        SP<BNode> last = std::move(mine.back());
        mine.pop_back();
        last = nullptr; // may push the dying node's children onto the list
    }
    graveyard = nullptr;
}

BNode const& BNode::operator=(BNode const& other) {
    if (this != &other) {
        m_text = other.m_text;
        Copy(other);
    }
    return *this;
}

void BNode::Copy(BNode const& other) {
    if (this == &other)
        return;
    if (Includes(&other)) {
        // Removing our children would destroy the source: copy from a silent snapshot.
        SP<BNode> snapshot = new BNode(other, false);
        Copy(*snapshot);
        return;
    }
    RemoveChildren();
    CopyFlagsAndDecor(other);
    CopyChildren(other, true);
    SendMsg(MSG_NODE_OBJECT_CHANGED, this);
}

void BNode::CopyFlagsAndDecor(BNode const& other) {
    m_active = other.m_active;
    m_locked = other.m_locked;
    m_messageDispatcher = other.m_messageDispatcher;
    m_object = other.m_object;
    if (m_decor) {
        m_decor->attributes.RemoveAll();
        m_decor->annotations.RemoveAll();
    }
    if (other.m_decor && !other.m_decor->IsEmpty()) {
        EditAttributes().AddList(other.m_decor->attributes);
        EditAnnotations().AddList(other.m_decor->annotations);
    }
}

void BNode::CopyChildren(BNode const& other, bool announce) {
    for (SP<BNode> const& child : other.m_children)
        if (child)
            Append(new BNode(*child, announce), announce);
}

// ---- BSmartObj overrides ---------------------------------------------------------------------

unsigned long long BNode::AllocatedMemory() const {
    return AllocatedMemory(false);
}

int BNode::Version() const {
    return 2;
}

// ---- stored form ----------------------------------------------------------------------------

void BNode::WriteData(BArchive& archive) const {
    archive.WriteObjectRef(m_object);
    archive.WriteObjectList(m_children);
    archive.WriteObjectList(Attributes());
    archive << m_text.AsString(); // still written for readers of the first format
    archive.WriteIndex(m_parent); // the parent is referred to, never queued
    archive << static_cast<std::uint8_t>((m_active ? 1 : 0) | (m_locked ? 2 : 0));
    archive << m_text;
    archive.WriteObjectList(Annotations());
}

SP<BSmartObj> BNode::Read(BArchive& archive, int version) {
    SP<BNode> node = SP<BNode>::FirstOwner(
        ::new (NodeBlocks::OfThread().Take(sizeof(BNode), alignof(BNode))) BNode);
    node->m_inBlock = true;
    node->m_underLoad = archive.ResolvesLater();
    archive.ReadObjectRef(node->m_object);
    archive.ReadObjectList(node->m_children);
    // Most nodes have neither attributes nor annotations: both lists are read into a spare
    // block of the thread, which becomes the node's only if it holds something.
    thread_local std::unique_ptr<Decor> spare;
    std::unique_ptr<Decor> decor = spare ? std::move(spare) : std::make_unique<Decor>();
    archive.ReadObjectList(decor->attributes);
    // The narrow text is only the text of the first format; later ones carry it wide.
    BString narrow;
    if (version == 0)
        archive >> narrow;
    else
        archive.SkipString();
    // The stored parent is read and passed over: a node's parent is the node whose child list
    // holds it, which UpdateAssociations establishes. In every file the library writes the two
    // agree; in a damaged one, trusting the stored number could make a node its own ancestor.
    archive.ReadIndex();
    std::uint8_t flags = 1;
    archive >> flags;
    node->m_active = (flags & 1) != 0;
    node->m_locked = (flags & 2) != 0;
    if (version == 0)
        node->m_text = WString(narrow);
    else
        archive.ReadSharedText(node->m_text);
    if (version >= 2)
        archive.ReadObjectList(decor->annotations);
    if (!node->m_underLoad) {
        // From a stream the references are objects already and no UpdateAssociations
        // follows: a stored null, or an object of another class where a node or attribute
        // belongs, leaves nothing in the lists. The children keep a null parent, as the
        // stream holds no parent.
        DropNulls(node->m_children);
        DropNulls(decor->attributes);
        DropNulls(decor->annotations);
    }
    if (decor->IsEmpty())
        spare = std::move(decor);
    else
        node->m_decor = std::move(decor);
    return node;
}

template <class T>
void BNode::DropNulls(DList<SP<T>>& list) {
    for (auto pos = list.HeadPosition(); pos.IsValid();)
        if (*pos)
            pos.Next();
        else
            list.RemoveAt(pos);
}

void BNode::UpdateAssociations(BArchive& archive) {
    BSmartObj::UpdateAssociations(archive);
    archive.ResolveObjectRef(m_object);
    archive.ResolveObjectList(m_children);
    if (m_decor) {
        archive.ResolveObjectList(m_decor->attributes);
        archive.ResolveObjectList(m_decor->annotations);
    }
    // A node may hold another node as its object, attribute or annotation (a free-standing
    // node, a sibling): every such association is kept. Only one that would close a cycle of
    // owners goes, since such a cycle keeps itself alive for ever; in a file the library writes
    // from a tree built by calls there is none, so this drops nothing but what a damaged file
    // adds.
    std::unordered_set<BNode const*>& seen = OwnedScratch();
    if (!seen.empty())
        seen.clear(); // clearing costs the buckets even when there is nothing to clear
    if (ClosesCycle(AsNode(m_object.get()), seen))
        m_object = nullptr;
    ClaimChildren(seen);
    if (m_decor) {
        DropNullsAndCycles(m_decor->attributes, seen);
        DropNullsAndCycles(m_decor->annotations, seen);
    }
    m_underLoad = false;
}

BNode const* BNode::AsNode(BSmartObj const* object) {
    if (!object)
        return nullptr;
    // Most objects of a tree are not nodes; the exact class is told without a cast through
    // the hierarchy.
    if (typeid(*object) == typeid(BNode))
        return static_cast<BNode const*>(object);
    return dynamic_cast<BNode const*>(object);
}

std::unordered_set<BNode const*>& BNode::OwnedScratch() {
    thread_local std::unordered_set<BNode const*> scratch;
    return scratch;
}

bool BNode::ClosesCycle(BNode const* target, std::unordered_set<BNode const*>& seen) const {
    // Would this node, owning target, own itself? That is so when target already owns this
    // node, directly or through other nodes. A node still under load owns nothing yet (its
    // references are numbers until its own turn comes), so a tree loaded top down costs no
    // walk at all. seen holds the nodes that earlier checks of this node walked and found not
    // to lead here; since a new association starts at this node, none of them can lead here
    // later either, so each node is walked at most once per resolved node.
    if (target == this)
        return true;
    if (!target || target->m_underLoad)
        return false;
    thread_local std::vector<BNode const*> pending;
    pending.assign(1, target);
    while (!pending.empty()) {
        BNode const* node = pending.back();
        pending.pop_back();
        if (node->m_underLoad || !seen.insert(node).second)
            continue;
        bool found = false;
        auto visit = [&](BSmartObj const* owned) {
            BNode const* next = AsNode(owned);
            found = found || next == this;
            if (next && !found)
                pending.push_back(next);
        };
        visit(node->m_object.get());
        for (SP<BNode> const& child : node->m_children)
            visit(child.get());
        for (SP<BAttribute> const& attribute : node->Attributes())
            visit(attribute.get());
        for (SP<BSmartObj> const& annotation : node->Annotations())
            visit(annotation.get());
        if (found) {
            // The nodes walked on the way lead here: they are no longer known not to.
            seen.clear();
            return true;
        }
    }
    return false;
}

void BNode::ClaimChildren(std::unordered_set<BNode const*>& seen) {
    // Entries that found no object are dropped, so that every walk of the list may rely on
    // real nodes. A child that another list has claimed already, or one that would own this
    // node, comes only from a damaged file; it is dropped too, so the loaded tree keeps every
    // invariant of a tree built by calls.
    for (auto pos = m_children.HeadPosition(); pos.IsValid();) {
        BNode* child = *pos;
        if (!child || child->m_place.IsValid() || ClosesCycle(child, seen)) {
            m_children.RemoveAt(pos);
            continue;
        }
        child->m_parent = this;
        child->m_place = pos;
        pos.Next();
    }
}

bool BNode::HasOwnChildren() const {
    // Only a node that parents a child can be above another, so adding a fresh node costs no
    // walk up the tree.
    auto head = m_children.HeadPosition();
    return head.IsValid() && *head && (*head)->m_parent == this;
}

template <class T>
void BNode::DropNullsAndCycles(DList<SP<T>>& list, std::unordered_set<BNode const*>& seen) {
    for (auto pos = list.HeadPosition(); pos.IsValid();)
        if (*pos && !ClosesCycle(AsNode(pos->get()), seen))
            pos.Next();
        else
            list.RemoveAt(pos);
}

// ---- state -----------------------------------------------------------------------------------

void BNode::Lock(bool locked) {
    if (m_locked == locked)
        return;
    m_locked = locked;
    SendMsg(MSG_NODE_LOCK_CHANGED, this);
}

bool BNode::IsLocked() {
    return m_locked;
}

void BNode::Activate(bool active) {
    if (m_active == active)
        return;
    m_active = active;
    SendMsg(MSG_NODE_ACTIVE_CHANGED, this);
}

void BNode::Deactivate() {
    Activate(false);
}

bool BNode::IsActive() const {
    return m_active;
}

BNode* BNode::Root() {
    BNode* node = this;
    while (node->m_parent)
        node = node->m_parent;
    return node;
}

bool BNode::IsBranchActive() const {
    for (BNode const* node = this; node; node = node->m_parent)
        if (!node->m_active)
            return false;
    return true;
}

// ---- visiting --------------------------------------------------------------------------------

void BNode::Traverse(BVisitor* visitor) {
    if (!m_active && !visitor->VisitInactiveNodes())
        return;
    visitor->PushPath(this);
    // Each walk takes the next element before it calls out, so a visitor may remove the
    // element it has just been given.
    for (auto pos = Attributes().HeadPosition(); pos.IsValid();) {
        BAttribute* attribute = *pos;
        pos.Next();
        visitor->PushAttrib(attribute);
    }
    if (visitor->TreatNode(this) && IsMessageDispatcher())
        SendMsg(MSG_NODE_TREATED, this);
    if (visitor->Treat(m_object) && IsMessageDispatcher())
        SendMsg(MSG_NODE_TREATED, this);
    if (!Annotations().IsEmpty()) {
        SP<BSmartObj const> owner = m_object ? m_object.get() : static_cast<BSmartObj*>(this);
        for (auto pos = Annotations().HeadPosition(); pos.IsValid();) {
            SP<BSmartObj> annotation = *pos;
            pos.Next();
            visitor->TreatAnnotation(annotation, owner);
        }
    }
    for (auto pos = m_children.HeadPosition(); pos.IsValid();) {
        SP<BNode> child = *pos;
        pos.Next();
        if (child)
            child->Traverse(visitor);
    }
    for (auto pos = Attributes().TailPosition(); pos.IsValid();) {
        BAttribute* attribute = *pos;
        pos.Prev();
        visitor->PopAttrib(attribute);
    }
    visitor->PopPath();
}

void BNode::TraverseObjects(BVisitor* visitor) {
    if (!m_active && !visitor->VisitInactiveNodes())
        return;
    if (visitor->Treat(m_object) && IsMessageDispatcher())
        SendMsg(MSG_NODE_TREATED, this);
    for (auto pos = m_children.HeadPosition(); pos.IsValid();) {
        SP<BNode> child = *pos;
        pos.Next();
        if (child)
            child->TraverseObjects(visitor);
    }
}

unsigned long long BNode::AllocatedMemory(bool activeOnly) const {
    // The same nodes as a BNodeItr walk visits, without taking references: this node may be
    // one that no SP owns. An object shared by two nodes counts twice.
    if (activeOnly && !m_active)
        return 0;
    unsigned long long total = 0;
    std::vector<BNode const*> pending{this};
    while (!pending.empty()) {
        BNode const* node = pending.back();
        pending.pop_back();
        if (node->m_object)
            total += node->m_object->AllocatedMemory();
        for (SP<BNode> const& child : node->m_children)
            if (child && (!activeOnly || child->m_active))
                pending.push_back(child);
    }
    return total;
}

// ---- object ----------------------------------------------------------------------------------

BSmartObj* BNode::GetObj() const {
    return m_object;
}

void BNode::SetObj(BSmartObj* object) {
    if (m_object.get() == object)
        return;
    SP<BSmartObj> old = m_object; // stays alive until the message is through
    m_object = object;
    SendMsg(MSG_NODE_OBJECT_CHANGED, this);
}

// ---- attributes and annotations --------------------------------------------------------------

template <class T>
bool BNode::RemoveFrom(DList<SP<T>>& list, T const* element) {
    for (auto pos = list.HeadPosition(); pos.IsValid(); pos.Next())
        if (pos->get() == element) {
            list.RemoveAt(pos);
            return true;
        }
    return false;
}

bool BNode::AddAttrib(BAttribute* attribute) {
    if (!attribute)
        return false;
    SP<BAttribute> keep = attribute;
    if (BAttribute* old = Attrib(attribute->Name())) {
        if (old == attribute)
            return false;
        RemoveFrom(m_decor->attributes, static_cast<BAttribute const*>(old));
    }
    EditAttributes().AddTail(keep);
    SendMsg(MSG_NODE_DECOR_CHANGED, this);
    return true;
}

int BNode::AttribNum() const {
    return Attributes().Count();
}

BAttribute* BNode::Attrib(int index) const {
    auto pos = Attributes().PositionAt(index);
    return pos.IsValid() ? pos->get() : nullptr;
}

BAttribute* BNode::Attrib(char16_t const* name) const {
    return Attrib(WString(name));
}

BAttribute* BNode::Attrib(WString name) const {
    // A load can leave null entries behind; they have no name.
    for (SP<BAttribute> const& attribute : Attributes())
        if (attribute && attribute->Name() == name)
            return attribute;
    return nullptr;
}

bool BNode::RemoveAttrib(BAttribute* attribute) {
    if (!attribute || !m_decor ||
        !RemoveFrom(m_decor->attributes, static_cast<BAttribute const*>(attribute)))
        return false;
    SendMsg(MSG_NODE_DECOR_CHANGED, this);
    return true;
}

bool BNode::RemoveAttrib(int index) {
    if (!m_decor)
        return false;
    auto pos = m_decor->attributes.PositionAt(index);
    if (!pos.IsValid())
        return false;
    m_decor->attributes.RemoveAt(pos);
    SendMsg(MSG_NODE_DECOR_CHANGED, this);
    return true;
}

bool BNode::RemoveAttrib(char16_t const* name) {
    return RemoveAttrib(WString(name));
}

bool BNode::RemoveAttrib(WString name) {
    return RemoveAttrib(Attrib(name));
}

void BNode::RemoveAttribs() {
    if (!m_decor || m_decor->attributes.IsEmpty())
        return;
    m_decor->attributes.RemoveAll();
    SendMsg(MSG_NODE_DECOR_CHANGED, this);
}

int BNode::AnnotationNum() const {
    return Annotations().Count();
}

bool BNode::AddAnnotation(BSmartObj* annotation) {
    if (!annotation)
        return false;
    for (SP<BSmartObj> const& existing : Annotations())
        if (existing.get() == annotation)
            return false;
    EditAnnotations().AddTail(annotation);
    SendMsg(MSG_NODE_DECOR_CHANGED, this);
    return true;
}

bool BNode::RemoveAnnotation(BSmartObj* annotation) {
    if (!annotation || !m_decor ||
        !RemoveFrom(m_decor->annotations, static_cast<BSmartObj const*>(annotation)))
        return false;
    // The address only names the annotation: the object may be gone by now.
    SendMsg(MSG_NODE_DECOR_CHANGED, Number(this), Number(annotation));
    return true;
}

void BNode::AnnounceDecorChange() {
    SendMsg(MSG_NODE_DECOR_CHANGED, this);
}

void BNode::RemoveAnnotations() {
    if (!m_decor || m_decor->annotations.IsEmpty())
        return;
    m_decor->annotations.RemoveAll();
    SendMsg(MSG_NODE_DECOR_CHANGED, this);
}

// ---- children --------------------------------------------------------------------------------

bool BNode::AddChild(BNode* child, int position) {
    // A node below itself would make a cycle of owners that nothing could ever free. Only a
    // child with children of its own can be above this node, so adding a fresh node costs no
    // walk up the tree.
    if (!child || child->m_parent || child == this ||
        (child->HasOwnChildren() && child->IsGrandParent(this)))
        return false;
    if (position < 0 || position >= ChildNum()) {
        Append(child, true);
        return true;
    }
    // Linked in at the position; the message carries the position asked for.
    if (position == 0)
        m_children.AddHead(child);
    else
        m_children.InsertAfter(m_children.PositionAt(position - 1), child);
    child->SetParent(this);
    child->m_place = m_children.PositionAt(position);
    SendMsg(MSG_NODE_CHILD_ADDED, Number(child), static_cast<unsigned long long>(position));
    return true;
}

void BNode::Append(BNode* child, bool announce) {
    m_children.AddTail(child);
    child->SetParent(this);
    child->m_place = m_children.TailPosition();
    if (announce)
        SendMsg(MSG_NODE_CHILD_ADDED, Number(child),
                static_cast<unsigned long long>(ChildNum() - 1));
}

void BNode::Unlink(DList<SP<BNode>>::Position position) {
    BNode* child = *position;
    SendMsg(MSG_NODE_CHILD_REMOVED, child);
    if (child) {
        child->m_parent = nullptr;
        child->m_place = {};
    }
    m_children.RemoveAt(position);
}

bool BNode::RemoveChild(char16_t const* path) {
    BNode* child = Child(path);
    return child && RemoveChild(child);
}

bool BNode::RemoveChild(BNode* child) {
    if (!child || child->m_parent != this || !child->m_place.IsValid())
        return false;
    Unlink(child->m_place);
    return true;
}

bool BNode::RemoveChild(int index) {
    auto pos = m_children.PositionAt(index);
    if (!pos.IsValid())
        return false;
    Unlink(pos);
    return true;
}

void BNode::RemoveChildren() {
    while (!m_children.IsEmpty())
        Unlink(m_children.HeadPosition());
}

BNode* BNode::Child(int index) const {
    auto pos = m_children.PositionAt(index);
    return pos.IsValid() ? pos->get() : nullptr;
}

BNode* BNode::FindChild(WString const& text) const {
    for (SP<BNode> const& child : m_children)
        if (child && SameName(child->m_text, text))
            return child;
    return nullptr;
}

BNode* BNode::Child(char16_t const* path) const {
    char16_t const* p = path ? path : u"";
    while (*p == u'/')
        ++p;
    BNode const* node = this;
    for (char16_t const* slash; (slash = qv::platform::StrChrW(p, u'/')) != nullptr;
         p = slash + 1) {
        WString step;
        step.CopyN(static_cast<unsigned long long>(slash - p), p);
        node = node->FindChild(step);
        if (!node)
            return nullptr;
    }
    // An empty last step finds a child with an empty text.
    return node->FindChild(WString(p));
}

BNode* BNode::QueryChild(WString path) {
    unsigned long long slash = path.Search(u'/');
    bool last = slash == ~0ull;
    WString token = last ? path : path.Sub(0, slash);
    BNode* child = FindChild(token);
    if (!child) {
        SP<BNode> made = new BNode;
        made->m_text = token;
        AddChild(made, -1);
        child = made;
    }
    return last ? child : child->QueryChild(path.Sub(slash + 1));
}

int BNode::ChildNum() const {
    return m_children.Count();
}

BNode* BNode::Sister() const {
    if (!m_parent || !m_place.IsValid())
        return nullptr;
    auto next = m_place;
    next.Next();
    return next.IsValid() ? next->get() : nullptr;
}

WString BNode::ChildTextSuggestion(WString base) const {
    WString text;
    for (std::uint32_t n = static_cast<std::uint32_t>(ChildNum()) + 1;; ++n) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "%03d", static_cast<int>(n));
        text = base + WString(BString(digits));
        if (!Child(text.CStr()) || n == 0xFFFFFFFFu)
            return text;
    }
}

// ---- the rest --------------------------------------------------------------------------------

void BNode::Clear() {
    RemoveAttribs();
    RemoveAnnotations();
    RemoveChildren();
    SetObj(nullptr);
}

BNode* BNode::Parent() const {
    return m_parent;
}

BNode* BNode::GetParent() const {
    return m_parent;
}

void BNode::SetParent(BNode* parent) {
    m_parent = parent;
}

bool BNode::IsGrandParent(BNode const* node) const {
    if (!node)
        return false;
    for (BNode const* up = node->m_parent; up; up = up->m_parent)
        if (up == this)
            return true;
    return false;
}

bool BNode::Includes(BNode const* node) const {
    return node && (node == this || IsGrandParent(node));
}

void BNode::SetText(WString text) {
    m_text = std::move(text);
    SendMsg(MSG_NODE_TEXT_CHANGED, this);
}

void BNode::SetText(char16_t const* text) {
    SetText(WString(text));
}

char16_t const* BNode::GetText() const {
    return m_text.CStr();
}

bool BNode::IsMessageDispatcher() const {
    BNode const* root = this;
    while (root->m_parent)
        root = root->m_parent;
    return root->m_messageDispatcher;
}

void BNode::IsMessageDispatcher(bool dispatcher) {
    if (!m_parent)
        m_messageDispatcher = dispatcher;
}

void BNode::SendMsg(unsigned int message, unsigned long long param1, unsigned long long param2) {
    // Finding the root costs the depth of the node; without a dispatcher the message would
    // vanish anyway.
    if (BDispatcher::IsRegistered() && IsMessageDispatcher())
        QVSend(message, param1, param2);
}

void BNode::SendMsg(unsigned int message, BNode const* node, unsigned long long param2) {
    SendMsg(message, Number(node), param2);
}
