// BNode: the element of the object tree. A node has a text (its name in its parent), an
// associated object that several nodes may share, owned children in order, named attributes
// and annotations. The tree gives objects a place, a state and a path, and announces every
// change as a message through QVSend while its root is a message dispatcher.
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

class QV_EXPORT BNode : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BNode)

    // A non-null object is set through SetObj and so announced.
    explicit BNode(BSmartObj* object = nullptr);
    ~BNode() override;
    // Destroys the node and gives its memory back to where it came from: the heap, or the
    // block that a load placed it in.
    static void operator delete(BNode* node, std::destroying_delete_t);

    // The text is assigned without a message, then Copy does the rest.
    BNode const& operator=(BNode const& other);

    // Overrides of BSmartObj, in place.
    unsigned long long AllocatedMemory() const override;
    void WriteData(BArchive& archive) const override;
    void UpdateAssociations(BArchive& archive) override;
    int Version() const override;

    // The virtual operations of a node, in the order of their slots.
    virtual void Lock(bool locked);
    virtual bool IsLocked();
    virtual void Activate(bool active);
    virtual void Deactivate();
    virtual bool IsActive() const;
    virtual BNode* Root();
    virtual bool IsBranchActive() const;
    virtual void Traverse(BVisitor* visitor);
    virtual void TraverseObjects(BVisitor* visitor);
    virtual BSmartObj* GetObj() const;
    virtual void SetObj(BSmartObj* object);
    virtual unsigned long long AllocatedMemory(bool activeOnly) const;
    virtual bool AddAttrib(BAttribute* attribute);
    virtual int AttribNum() const;
    virtual BAttribute* Attrib(int index) const;
    virtual BAttribute* Attrib(char16_t const* name) const;
    virtual BAttribute* Attrib(WString name) const;
    virtual bool RemoveAttrib(BAttribute* attribute);
    virtual bool RemoveAttrib(int index);
    virtual bool RemoveAttrib(char16_t const* name);
    virtual bool RemoveAttrib(WString name);
    virtual void RemoveAttribs();
    virtual bool AddChild(BNode* child, int position = -1);
    virtual bool RemoveChild(char16_t const* path);
    virtual bool RemoveChild(BNode* child);
    virtual bool RemoveChild(int index);
    virtual void RemoveChildren();
    virtual BNode* QueryChild(WString path);
    virtual int AnnotationNum() const;
    virtual bool AddAnnotation(BSmartObj* annotation);
    virtual bool RemoveAnnotation(BSmartObj* annotation);
    virtual void RemoveAnnotations();
    virtual void Clear();
    virtual BNode* Parent() const;
    virtual bool IsGrandParent(BNode const* node) const;
    virtual bool Includes(BNode const* node) const;
    virtual void SetText(WString text);
    virtual void SetText(char16_t const* text);
    virtual char16_t const* GetText() const;
    virtual bool IsMessageDispatcher() const;
    virtual void IsMessageDispatcher(bool dispatcher);
    virtual WString ChildTextSuggestion(WString base) const;

    // Shares object, attributes and annotations with other and deep-copies its children; the
    // text stays.
    void Copy(BNode const& other);
    BNode* Child(int index) const;
    // A path of texts separated by "/", compared case-blind; leading slashes are skipped.
    BNode* Child(char16_t const* path) const;
    int ChildNum() const;
    BNode* GetParent() const;
    // The next child of the same parent, null for the last one or without a parent.
    BNode* Sister() const;

    static SP<BSmartObj> Read(BArchive& archive, int version);

    // The lists, for the iterators. A node without attributes or annotations hands out a
    // shared empty list.
    DList<SP<BNode>> const& Children() const { return m_children; }
    DList<SP<BAttribute>> const& Attributes() const;
    DList<SP<BSmartObj>> const& Annotations() const;

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
