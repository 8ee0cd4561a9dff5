/// \file
/// BBank: a handle on a tree of nodes that addresses nodes by path. docs/banks.md tells the
/// rules and why.
#pragma once

#include <qv/core/Export.h>
#include <qv/tree/BNode.h>

/// Addresses nodes by path, as a file system addresses files. A path is "//" for the root, or
/// names separated by "/" with or without one "/" in front, the first name being a child of
/// the root; names match node texts case-blind. Banks are values: copies share one tree, which
/// has no lock, so threads that share it keep their calls apart.
class QV_EXPORT BBank {
public:
    /// The separator of the names of a path.
    static constexpr char16_t DELIM = u'/';

    /// Holds root, or a new node without object for null; the root is never null.
    BBank(SP<BNode> root = nullptr);
    /// @name Copies share the root.
    ///@{
    BBank(BBank const& other) = default;
    BBank& operator=(BBank const& other) = default;
    ///@}

    /// The path of node in this bank ("//" for the root), empty if the root does not include
    /// it.
    virtual WString Path(BNode const* node) const;
    /// The path of the first node in depth-first order, inactive branches included, whose
    /// object has that unique id; empty if none.
    virtual WString PathOfObject(long id) const;
    /// The path of the first node in depth-first order whose object is object; empty if none
    /// or for null.
    virtual WString PathOfObject(BSmartObj* object) const;
    virtual ~BBank() = default;

    /// The root, shared with every copy of the bank.
    SP<BNode> Root() const;

    /// True if name is a valid name: at least one character, each a digit, an ASCII letter,
    /// one of "_-." or one of the umlauts and sharp s.
    static bool CheckName(WString const& name);
    /// True if path is not a valid path: null, empty, a name that is not valid, an empty step
    /// ("a/", "a//b"). "//" and the single "/" are valid.
    static bool PathSyntaxError(char16_t const* path);
    /// first and second joined by one "/"; empty if either is not valid or second is the
    /// root.
    static WString ConcatPath(WString first, WString second);
    /// The path of the parent of path ("//" for a name below the root); false, leaving parent
    /// untouched, for an empty path and for the root. The syntax is not checked.
    bool ParentPath(char16_t const* path, WString& parent) const;
    /// True if path is parent or lies below it, on the paths alone, case-blind.
    static bool IsGrandParent(WString path, WString parent);
    /// Whether a node exists at path; creates nothing. Names are not checked here, so a node
    /// whose text is not a valid name is found too.
    bool ExistsContainer(char16_t const* path) const;
    /// The same, and the node found (null if none) in node.
    bool ExistsContainer(char16_t const* path, SP<BNode>& node) const;
    /// The node at path, created with every node on the way that is missing; null for a null
    /// path, for "/" and at the first name that is not valid (nodes made before it stay). The
    /// bank's tree owns the result.
    BNode* Container(char16_t const* path);
    /// A node free for an object: the node at an existing path if it has an object, else a
    /// new child of it named by ChildTextSuggestion of an empty base; for a missing path,
    /// Container(path).
    BNode* Node(char16_t const* path);
    /// The path of node in whatever tree it is: empty for null, "//" for a root, else "/" and
    /// the texts from below the root down to the node, as they stand.
    static WString PATH(BNode const* node);

private:
    BNode* GetChild(BNode* parent, WString& name) const;
    BNode* GetOrCreateChild(BNode* parent, WString& name);

    SP<BNode> m_root;
};
