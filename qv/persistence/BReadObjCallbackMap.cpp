#include <cstdlib>
#include <cstring>
#include <qv/persistence/BReadObjCallbackMap.h>

namespace NArchive {

BReadObjCallbackMap& BReadObjCallbackMap::Instance() {
    static BReadObjCallbackMap table;
    return table;
}

void BReadObjCallbackMap::Add(char const* className, ReadFunction read) {
    if (!className || !read)
        return;
    std::size_t length = std::strlen(className);
    if (length >= kNameSize || m_count >= kCapacity)
        std::exit(-1);
    std::memcpy(m_names[m_count], className, length + 1);
    m_functions[m_count] = read;
    ++m_count;
}

ReadFunction BReadObjCallbackMap::Find(char const* className) const {
    if (!className)
        return nullptr;
    // A linear walk, paid once per loaded object. No test for doubles was made on adding:
    // the older row stands in front and wins.
    for (int i = 0; i < m_count; ++i)
        if (std::strcmp(m_names[i], className) == 0)
            return m_functions[i];
    return nullptr;
}

} // namespace NArchive

void RegisterArchiveCallback(char const* className, NArchive::ReadFunction read) {
    NArchive::BReadObjCallbackMap::Instance().Add(className, read);
}
