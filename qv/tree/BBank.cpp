// Paths are taken apart in place, one name at a time, without building a list of names. The
// root is written "//"; every other path names its nodes from below the root.
#include <qv/platform/TextServices.h>
#include <qv/tree/BBank.h>
#include <qv/tree/BNodeItr.h>
#include <string_view>

namespace {

constexpr char16_t kRoot[] = u"//";

bool IsRoot(std::u16string_view path) {
    return path == kRoot;
}

bool IsNameUnit(char16_t u) {
    if ((u >= u'0' && u <= u'9') || (u >= u'A' && u <= u'Z') || (u >= u'a' && u <= u'z'))
        return true;
    switch (u) {
    case u'_':
    case u'-':
    case u'.':
    case u'\u00E4': // ä
    case u'\u00F6': // ö
    case u'\u00FC': // ü
    case u'\u00C4': // Ä
    case u'\u00D6': // Ö
    case u'\u00DC': // Ü
    case u'\u00DF': // ß
        return true;
    default:
        return false;
    }
}

bool IsName(std::u16string_view name) {
    if (name.empty())
        return false;
    for (char16_t u : name)
        if (!IsNameUnit(u))
            return false;
    return true;
}

// Splits off the first name of rest: the name, and rest behind its "/" (last is set when the
// name was the last one).
std::u16string_view NextName(std::u16string_view& rest, bool& last) {
    std::size_t slash = rest.find(BBank::DELIM);
    last = slash == std::u16string_view::npos;
    std::u16string_view name = rest.substr(0, slash);
    rest = last ? std::u16string_view() : rest.substr(slash + 1);
    return name;
}

} // namespace

BBank::BBank(SP<BNode> root) : m_root(root ? std::move(root) : SP<BNode>(new BNode)) {}

SP<BNode> BBank::Root() const {
    return m_root;
}

bool BBank::CheckName(WString const& name) {
    return IsName(name.View());
}

bool BBank::PathSyntaxError(char16_t const* path) {
    if (!path || !*path)
        return true;
    std::u16string_view rest = path;
    if (IsRoot(rest))
        return false;
    if (rest.front() == DELIM)
        rest.remove_prefix(1);
    if (rest.empty())
        return false; // the single "/" passes, though it leads nowhere
    for (bool last = false; !last;)
        if (!IsName(NextName(rest, last)))
            return true;
    return false;
}

WString BBank::ConcatPath(WString first, WString second) {
    if (PathSyntaxError(first) || PathSyntaxError(second) || IsRoot(second.View()))
        return WString();
    WString joined = IsRoot(first.View()) ? WString() : first;
    if (second.CStr()[0] != DELIM)
        joined += DELIM;
    return joined + second;
}

bool BBank::ParentPath(char16_t const* path, WString& parent) const {
    std::u16string_view text = path ? path : u"";
    if (text.empty() || IsRoot(text))
        return false;
    std::size_t slash = text.rfind(DELIM);
    if (slash == std::u16string_view::npos || slash == 0)
        parent = kRoot;
    else
        parent = WString(text.substr(0, slash));
    return true;
}

bool BBank::IsGrandParent(WString path, WString parent) {
    if (path.IsEmpty() || parent.IsEmpty())
        return false;
    if (IsRoot(parent.View()))
        return true;
    if (IsRoot(path.View()))
        return false;
    std::u16string_view p = path.View(), q = parent.View();
    p.remove_prefix(std::min(p.find_first_not_of(DELIM), p.size()));
    q.remove_prefix(std::min(q.find_first_not_of(DELIM), q.size()));
    if (p.size() < q.size() ||
        qv::platform::StrCmpNIW(p.data(), q.data(), static_cast<int>(q.size())) != 0)
        return false;
    return p.size() == q.size() || p[q.size()] == DELIM;
}

bool BBank::ExistsContainer(char16_t const* path) const {
    SP<BNode> node;
    return ExistsContainer(path, node);
}

bool BBank::ExistsContainer(char16_t const* path, SP<BNode>& node) const {
    if (!path)
        return false;
    node = IsRoot(path) ? m_root.get() : m_root->Child(path);
    return node != nullptr;
}

BNode* BBank::Container(char16_t const* path) {
    if (!path)
        return nullptr;
    std::u16string_view rest = path;
    if (IsRoot(rest))
        return m_root;
    if (!rest.empty() && rest.front() == DELIM)
        rest.remove_prefix(1);
    if (rest.empty())
        return nullptr;
    BNode* node = m_root;
    for (bool last = false; node && !last;) {
        WString name(NextName(rest, last));
        node = GetOrCreateChild(node, name);
    }
    return node;
}

BNode* BBank::Node(char16_t const* path) {
    SP<BNode> found;
    if (!ExistsContainer(path, found))
        return Container(path);
    if (found->GetObj())
        return found;
    SP<BNode> child = new BNode;
    child->SetText(found->ChildTextSuggestion(WString()));
    found->AddChild(child, -1);
    return child;
}

WString BBank::PATH(BNode const* node) {
    if (!node)
        return WString();
    if (!node->Parent())
        return WString(kRoot);
    WString path = WString(u"/") + node->GetText();
    for (BNode const* up = node->Parent(); up->Parent(); up = up->Parent()) {
        path.Prepend(up->GetText());
        path.Prepend(DELIM);
    }
    return path;
}

WString BBank::Path(BNode const* node) const {
    return m_root->Includes(node) ? PATH(node) : WString();
}

WString BBank::PathOfObject(long id) const {
    for (BNodeItr it(m_root, BNodeItr::ALL_NODES); it; ++it)
        if (BSmartObj* object = it.Current()->GetObj(); object && object->UniqueID() == id)
            return Path(it.Current());
    return WString();
}

WString BBank::PathOfObject(BSmartObj* object) const {
    if (!object)
        return WString();
    for (BNodeItr it(m_root, BNodeItr::ALL_NODES); it; ++it)
        if (it.Current()->GetObj() == object)
            return Path(it.Current());
    return WString();
}

BNode* BBank::GetChild(BNode* parent, WString& name) const {
    if (!CheckName(name))
        return nullptr;
    for (SP<BNode> const& child : parent->Children())
        if (child && qv::platform::StrCmpIW(child->GetText(), name.CStr()) == 0)
            return child;
    return nullptr;
}

BNode* BBank::GetOrCreateChild(BNode* parent, WString& name) {
    if (!CheckName(name))
        return nullptr;
    if (BNode* child = GetChild(parent, name))
        return child;
    SP<BNode> child = new BNode;
    child->SetText(name);
    parent->AddChild(child, -1);
    return child;
}
