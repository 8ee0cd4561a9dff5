/// \file
/// BNode: the element of the object tree. See docs/nodes.md.
#pragma once

#include <memory>
#include <new>
#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/containers/DList.h>
#include <qv/tree/BAttribute.h>
#include <unordered_set>

class BVisitor;
namespace qv::detail {
template <class T>
class NodeListItr;
}

/// A node has a text (its name in its parent), an associated object that several nodes may
/// share, owned children in order, named attributes and annotations. The tree gives objects a
/// place, a state and a path, and announces every change synchronously as a message through
/// QVSend (MessageNumbers.h) while its root is a message dispatcher; a handler sees the change
/// made (a removed child is still in the list) and must not remove what it is told about. A node
/// lives as long as its parent's list or any other SP holds it; a node whose parent dies lives on
/// as a root if held elsewhere.
///
/// Operations report by their bool or null result and throw nothing of their own; a false
/// result leaves the node as it was. Pointers handed out (children, attributes, the object)
/// are borrowed: valid while the node holds them. A node has no lock: operations on one tree
/// must not overlap, and the caller sees to that. Children, attributes and annotations are
/// linked lists: access by index or by name is a walk, counts and appending are constant.
class QV_EXPORT BNode : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BNode)

    /// An active, unlocked root that dispatches messages. A non-null object is set through
    /// SetObj and so announced.
    explicit BNode(BSmartObj* object = nullptr);
    /// Children that live on elsewhere become roots; no messages are sent.
    ~BNode() override;
    /// Destroys the node and gives its memory back to where it came from: the heap, or the
    /// block that a load placed it in.
    static void operator delete(BNode* node, std::destroying_delete_t);

    /// The text is assigned without a message, then Copy does the rest.
    BNode const& operator=(BNode const& other);

    /// @name Overrides of BSmartObj, in place.
    ///@{
    /// AllocatedMemory(false).
    unsigned long long AllocatedMemory() const override;
    /// Writes the stored form of version 2 (docs/archives.md); children, attributes, annotations
    /// and the object go as references.
    void WriteData(BArchive& archive) const override;
    /// After a load from an object archive: puts the referenced objects in and makes the node
    /// the parent of its children. Entries that found no object and associations that would
    /// make a node own itself (only a damaged file holds them) are dropped.
    void UpdateAssociations(BArchive& archive) override;
    /// 2: the stored form with annotations.
    int Version() const override;
    ///@}

    // The virtual operations of a node, in the order of their slots.
    /// @name State. Each setter announces a change (MSG_NODE_LOCK_CHANGED,
    /// MSG_NODE_ACTIVE_CHANGED) and does nothing when the state is already the one asked for.
    ///@{
    /// A flag for the application: the node itself forbids nothing while locked.
    virtual void Lock(bool locked);
    virtual bool IsLocked();
    /// An inactive node hides its branch from walks that ask for active nodes only.
    virtual void Activate(bool active);
    /// Activate(false).
    virtual void Deactivate();
    /// The node's own flag.
    virtual bool IsActive() const;
    ///@}
    /// The topmost node above this one, the node itself for a root.
    virtual BNode* Root();
    /// True when this node and every node up to the root are active.
    virtual bool IsBranchActive() const;
    /// Walks the branch depth-first, calling the visitor at fixed points (see BVisitor); an
    /// inactive node hides its branch unless the visitor visits inactive nodes. A true answer
    /// of TreatNode or Treat is announced as MSG_NODE_TREATED. The visitor may remove the
    /// element it was just given. An exception from the visitor passes through, and the pops
    /// of the levels in progress do not run.
    virtual void Traverse(BVisitor* visitor);
    /// The same walk with only Treat, once per node with its object (possibly null).
    virtual void TraverseObjects(BVisitor* visitor);
    /// @name The associated object: GetObj gives it (null if none). SetObj replaces it and
    /// announces MSG_NODE_OBJECT_CHANGED, unless it is the object already; the node takes a
    /// reference, and the old object stays alive until the message is through.
    ///@{
    virtual BSmartObj* GetObj() const;
    virtual void SetObj(BSmartObj* object);
    ///@}
    /// The sum of AllocatedMemory over the objects of the branch; with activeOnly an inactive
    /// node hides its branch. An object shared by two nodes counts twice.
    virtual unsigned long long AllocatedMemory(bool activeOnly) const;
    /// @name Attributes: at most one per name, names compared exactly; each change is
    /// announced as MSG_NODE_DECOR_CHANGED.
    ///@{
    /// Appends attribute, taking a reference, and takes out another of the same name. False
    /// for null and for the attribute that is already there.
    virtual bool AddAttrib(BAttribute* attribute);
    virtual int AttribNum() const;
    /// The attribute at index, null outside 0 to AttribNum() - 1.
    virtual BAttribute* Attrib(int index) const;
    /// The attribute of that name, null if none.
    virtual BAttribute* Attrib(char16_t const* name) const;
    virtual BAttribute* Attrib(WString name) const;
    /// Take the attribute out, dropping the node's reference; false when it is not there.
    virtual bool RemoveAttrib(BAttribute* attribute);
    virtual bool RemoveAttrib(int index);
    virtual bool RemoveAttrib(char16_t const* name);
    virtual bool RemoveAttrib(WString name);
    /// Takes all out with one message; none when there were none.
    virtual void RemoveAttribs();
    ///@}
    /// @name Children.
    ///@{
    /// Links child in at position (at the end for a negative position or one not below
    /// ChildNum()), takes a reference and announces MSG_NODE_CHILD_ADDED. False, changing
    /// nothing, for null, for a child that has a parent, for this node and for a node above it.
    virtual bool AddChild(BNode* child, int position = -1);
    /// Removes the node that Child(path) finds: false when it finds none or one that is not a
    /// child of this node (a path of more than one step). Removing means:
    /// MSG_NODE_CHILD_REMOVED while the child is still in the list, the parent cleared, the
    /// node's reference dropped. A child nobody else holds dies with its branch; one held
    /// elsewhere lives on as a root.
    virtual bool RemoveChild(char16_t const* path);
    /// False for null and for a node that is not a child of this one.
    virtual bool RemoveChild(BNode* child);
    /// False outside 0 to ChildNum() - 1.
    virtual bool RemoveChild(int index);
    /// Removes every child from the first to the last, one message each.
    virtual void RemoveChildren();
    /// The node at path below this one, made where missing: each step of texts separated by
    /// "/" finds the first child of that text (case-blind, as Child does) or appends a new
    /// child with that text. No slash is skipped: a leading "/" makes a step with an empty
    /// text. Never null.
    virtual BNode* QueryChild(WString path);
    ///@}
    /// @name Annotations: objects attached without a name, each at most once; each change is
    /// announced as MSG_NODE_DECOR_CHANGED.
    ///@{
    virtual int AnnotationNum() const;
    /// Appends annotation, taking a reference. False for null and for one already there.
    virtual bool AddAnnotation(BSmartObj* annotation);
    /// Takes annotation out, dropping the node's reference; the message carries its address
    /// as second parameter, which only names it. False for null or not found.
    virtual bool RemoveAnnotation(BSmartObj* annotation);
    /// Takes all out with one message; none when there were none.
    virtual void RemoveAnnotations();
    ///@}
    /// RemoveAttribs, RemoveAnnotations, RemoveChildren and SetObj(nullptr), in this order;
    /// text and flags stay.
    virtual void Clear();
    /// The parent, null for a root.
    virtual BNode* Parent() const;
    /// True when this node is above node (its parent, the parent's parent ...); false for
    /// null and for the node itself.
    virtual bool IsGrandParent(BNode const* node) const;
    /// True when node is this node or lies below it; false for null.
    virtual bool Includes(BNode const* node) const;
    /// @name The text, the node's name in its parent. SetText announces
    /// MSG_NODE_TEXT_CHANGED, also for the same text; null sets an empty text. GetText is never
    /// null and valid until the text changes.
    ///@{
    virtual void SetText(WString text);
    virtual void SetText(char16_t const* text);
    virtual char16_t const* GetText() const;
    ///@}
    /// Whether the tree's messages are sent: the root's flag, true unless the root was told
    /// otherwise.
    virtual bool IsMessageDispatcher() const;
    /// Sets the flag on a root; no effect on a node that has a parent.
    virtual void IsMessageDispatcher(bool dispatcher);
    /// A text for a new child: base and a number of at least three digits, counting from
    /// ChildNum() + 1 up to the first one that no child has ("Scan003").
    virtual WString ChildTextSuggestion(WString base) const;

    /// Shares object, attributes and annotations with other, takes over its flags and
    /// deep-copies its children, after removing its own (all announced, then
    /// MSG_NODE_OBJECT_CHANGED); the text stays. other may lie inside this node's branch.
    void Copy(BNode const& other);
    /// The child at index, null outside 0 to ChildNum() - 1.
    BNode* Child(int index) const;
    /// The node at a path of texts separated by "/", each step the first child of that text,
    /// compared case-blind as StrCmpIW does; leading slashes are skipped and a null path is
    /// empty. An empty last step finds a child with an empty text. Null when a step fails.
    BNode* Child(char16_t const* path) const;
    int ChildNum() const;
    /// Parent().
    BNode* GetParent() const;
    /// The next child of the same parent, null for the last one or without a parent.
    BNode* Sister() const;

    /// Reads a node of any stored version; registered for the archives from the start. A
    /// node read from a stream archive leaves out references that found no object.
    static SP<BSmartObj> Read(BArchive& archive, int version);

    /// @name The lists, for the iterators: read-only, valid while the node lives. A node
    /// without attributes or annotations hands out a shared empty list.
    ///@{
    DList<SP<BNode>> const& Children() const { return m_children; }
    DList<SP<BAttribute>> const& Attributes() const;
    DList<SP<BSmartObj>> const& Annotations() const;
    ///@}

private:
    friend class BNodeChildItr;
    friend class BNodeAttribItr;
    friend class BNodeAnnotationItr;
    template <class T>
    friend class qv::detail::NodeListItr;

    // The deep copy that Copy makes of each child; announce false keeps a snapshot silent.
    BNode(BNode const& other);
    BNode(BNode const& other, bool announce);

    void SetParent(BNode* parent);
    void AnnounceDecorChange();
    void SendMsg(unsigned int message, unsigned long long param1, unsigned long long param2);
    void SendMsg(unsigned int message, BNode const* node, unsigned long long param2 = 0);
    void CopyFlagsAndDecor(BNode const& other);
    void CopyChildren(BNode const& other, bool announce);
    void Append(BNode* child, bool announce);
    // Message, parent cleared, list entry taken out, reference dropped.
    void Unlink(DList<SP<BNode>>::Position position);
    BNode* FindChild(WString const& text) const;
    template <class T>
    static bool RemoveFrom(DList<SP<T>>& list, T const* element);
    // Loading: associations that would make a node own itself are dropped.
    static BNode const* AsNode(BSmartObj const* object);
    static std::unordered_set<BNode const*>& OwnedScratch();
    bool ClosesCycle(BNode const* target, std::unordered_set<BNode const*>& seen) const;
    template <class T>
    void DropNullsAndCycles(DList<SP<T>>& list, std::unordered_set<BNode const*>& seen);
    template <class T>
    static void DropNulls(DList<SP<T>>& list);
    void ClaimChildren(std::unordered_set<BNode const*>& seen);
    bool HasOwnChildren() const;
    // Attributes and annotations, which most nodes never have, live in a block of their own
    // that the first of them brings.
    struct Decor;
    Decor& EditDecor();
    DList<SP<BAttribute>>& EditAttributes();
    DList<SP<BSmartObj>>& EditAnnotations();

    SP<BSmartObj> m_object;
    DList<SP<BNode>> m_children;
    std::unique_ptr<Decor> m_decor;
    WString m_text;
    BNode* m_parent = nullptr;
    // Where this node stands in its parent's list, so that Sister and removal by pointer
    // need no walk. Valid exactly while m_parent is set.
    DList<SP<BNode>>::Position m_place;
    bool m_active = true;
    bool m_locked = false;
    bool m_messageDispatcher = true;
    // Set by Read while the reference fields still wait for their objects, cleared once
    // UpdateAssociations has put them in: such a node owns nothing yet.
    bool m_underLoad = false;
    // Placed by a load in a shared block rather than taken from the heap on its own.
    bool m_inBlock = false;
};
