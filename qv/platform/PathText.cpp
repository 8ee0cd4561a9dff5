#include <algorithm>
#include <cerrno>
#include <qv/platform/CodePage.h>
#include <qv/platform/PathText.h>
#include <vector>

namespace qv::platform {

namespace {

bool HasDrive(std::u16string_view p) {
    return p.size() >= 2 && p[1] == u':' &&
           ((p[0] >= u'A' && p[0] <= u'Z') || (p[0] >= u'a' && p[0] <= u'z'));
}

// Units of the root that removing components never touches: "C:\" or "C:", "\\", "\".
std::size_t RootLength(std::u16string_view p) {
    if (HasDrive(p))
        return p.size() > 2 && IsPathSeparator(p[2]) ? 3 : 2;
    if (p.size() >= 2 && IsPathSeparator(p[0]) && IsPathSeparator(p[1]))
        return 2;
    return !p.empty() && IsPathSeparator(p[0]) ? 1 : 0;
}

std::u16string_view Text(char16_t const* s) {
    return s ? std::u16string_view(s) : std::u16string_view();
}

// The root that ".." cannot climb above: RootLength's, and for a UNC path also the server
// name and the separator behind it (a share can be left, the server cannot).
std::size_t CanonicalRootLength(std::u16string_view p) {
    std::size_t const root = RootLength(p);
    if (root != 2 || HasDrive(p))
        return root;
    auto const serverEnd = std::find_if(p.begin() + 2, p.end(), IsPathSeparator);
    return static_cast<std::size_t>(serverEnd - p.begin()) + (serverEnd != p.end() ? 1 : 0);
}

// The root with '/' for its separators, then the components with "." dropped and ".."
// removing the one before it. ".." never climbs above the root; in a relative path the ".."
// components it starts with are kept, and one that would climb above the start later is
// dropped.
std::u16string Canonical(std::u16string_view path) {
    std::size_t const rootLength = CanonicalRootLength(path);
    std::u16string out(path.substr(0, rootLength));
    std::replace(out.begin(), out.end(), u'\\', kPathSeparator);
    std::vector<std::u16string_view> parts;
    std::size_t leadingUps = 0;
    bool leading = rootLength == 0;
    std::u16string_view rest = path.substr(rootLength);
    bool const trailing = !rest.empty() && IsPathSeparator(rest.back());
    while (!rest.empty()) {
        auto const end = std::find_if(rest.begin(), rest.end(), IsPathSeparator);
        std::u16string_view const part =
            rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
        rest.remove_prefix(std::min(rest.size(), part.size() + 1));
        if (part == u"..") {
            if (parts.size() > leadingUps) {
                parts.pop_back();
            } else if (leading) {
                parts.push_back(part);
                ++leadingUps;
            }
        } else if (!part.empty() && part != u".") {
            parts.push_back(part);
            leading = false;
        }
    }
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0)
            out += kPathSeparator;
        out += parts[i];
    }
    if (trailing && !parts.empty())
        out += kPathSeparator;
    return out;
}

// Copies a part of _wsplitpath_s; false when it doesn't fit.
bool CopyPart(std::u16string_view part, char16_t* dest, std::size_t size) {
    if (!dest)
        return true;
    if (part.size() >= size)
        return false;
    std::copy(part.begin(), part.end(), dest);
    dest[part.size()] = 0;
    return true;
}

} // namespace

bool PathIsAbsolute(std::u16string_view path) {
    return HasDrive(path) || RootLength(path) > 0;
}

std::string NativePath(std::u16string_view path) {
    if (path.starts_with(u"\\\\?\\"))
        path.remove_prefix(4);
    std::string native = Utf16ToUtf8(path);
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

char16_t* PathCombineW(char16_t* dest, char16_t const* dir, char16_t const* file) {
    if (!dest)
        return nullptr;
    dest[0] = 0;
    if (!dir && !file)
        return nullptr;
    std::u16string_view const left = Text(dir);
    std::u16string_view const right = Text(file);
    std::u16string joined;
    if (PathIsAbsolute(right) || left.empty()) {
        joined = right;
    } else {
        joined = left;
        if (!right.empty() && !IsPathSeparator(left.back()))
            joined += kPathSeparator;
        joined += right;
    }
    std::u16string result = Canonical(joined);
    // Nothing on either side, or a bare drive, gives a root, as on Windows.
    if (result.empty() ? left.empty() && right.empty() : result.size() == 2 && HasDrive(result))
        result += kPathSeparator;
    if (result.size() >= MAX_PATH)
        return nullptr;
    std::copy(result.begin(), result.end(), dest);
    dest[result.size()] = 0;
    return dest;
}

char16_t const* PathFindExtensionW(char16_t const* path) {
    if (!path)
        return nullptr;
    char16_t const* dot = nullptr;
    for (; *path; ++path) {
        if (IsPathSeparator(*path) || *path == u' ')
            dot = nullptr;
        else if (*path == u'.')
            dot = path;
    }
    return dot ? dot : path;
}

char16_t const* PathFindFileNameW(char16_t const* path) {
    if (!path)
        return nullptr;
    char16_t const* name = path;
    for (char16_t const* p = path; *p; ++p)
        if ((IsPathSeparator(*p) || *p == u':') && p[1] && !IsPathSeparator(p[1]))
            name = p + 1;
    return name;
}

bool PathRemoveFileSpecW(char16_t* path) {
    if (!path)
        return false;
    std::u16string_view const p(path);
    std::size_t const root = RootLength(p);
    if (p.size() <= root)
        return false;
    // A colon after the last separator ends the file name and the stream name begins, as
    // in "a.txt:stream": the colon stays.
    std::size_t const last = p.find_last_of(u"/\\:");
    std::size_t cut = root;
    if (last != std::u16string_view::npos && last >= root)
        cut = p[last] == u':' ? last + 1 : last;
    if (cut == p.size())
        return false;
    path[cut] = 0;
    return true;
}

void PathStripPathW(char16_t* path) {
    if (!path)
        return;
    char16_t const* name = PathFindFileNameW(path);
    std::u16string_view const rest(name);
    std::copy(rest.begin(), rest.end(), path);
    path[rest.size()] = 0;
}

int _wsplitpath_s(char16_t const* path, char16_t* drive, std::size_t driveSize, char16_t* dir,
                  std::size_t dirSize, char16_t* fname, std::size_t fnameSize, char16_t* ext,
                  std::size_t extSize) {
    std::pair<char16_t*, std::size_t> const parts[] = {
        {drive, driveSize}, {dir, dirSize}, {fname, fnameSize}, {ext, extSize}};
    auto clear = [&] {
        for (auto [buffer, size] : parts)
            if (buffer && size)
                buffer[0] = 0;
    };
    bool const badPart = std::any_of(std::begin(parts), std::end(parts), [](auto const& part) {
        return (part.first == nullptr) != (part.second == 0);
    });
    if (!path || badPart) {
        clear();
        return EINVAL;
    }
    std::u16string_view p(path);
    std::u16string_view const driveText = HasDrive(p) ? p.substr(0, 2) : std::u16string_view();
    p.remove_prefix(driveText.size());
    std::size_t const lastSeparator = p.find_last_of(u"/\\");
    std::size_t const nameStart =
        lastSeparator == std::u16string_view::npos ? 0 : lastSeparator + 1;
    std::u16string_view const name = p.substr(nameStart);
    std::size_t const dot = name.rfind(u'.');
    std::size_t const stem = dot == std::u16string_view::npos ? name.size() : dot;
    if (!CopyPart(driveText, drive, driveSize) || !CopyPart(p.substr(0, nameStart), dir, dirSize) ||
        !CopyPart(name.substr(0, stem), fname, fnameSize) ||
        !CopyPart(name.substr(stem), ext, extSize)) {
        clear();
        return ERANGE;
    }
    return 0;
}

} // namespace qv::platform
