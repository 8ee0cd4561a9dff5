#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <mutex>
#include <qv/core/ClassNameRegistry.h>
#include <shared_mutex>
#include <string>
#include <typeindex>
#include <unordered_map>

namespace {

struct Registry {
    std::shared_mutex mutex;
    std::unordered_map<std::type_index, char const*> names;
    // Names made for unregistered classes live as long as the process.
    std::unordered_map<std::type_index, std::unique_ptr<std::string>> derived;
};

// Made on first use: registrations run in static initialisers of any translation unit.
Registry& TheRegistry() {
    static Registry registry;
    return registry;
}

std::string NameFromTypeInfo(std::type_info const& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> demangled(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    return std::string("class ") + (status == 0 && demangled ? demangled.get() : type.name());
}

// The registered name, or one made for the unregistered class.
char const* FindName(std::type_info const& type) {
    Registry& r = TheRegistry();
    std::type_index key(type);
    {
        std::shared_lock lock(r.mutex);
        if (auto it = r.names.find(key); it != r.names.end())
            return it->second;
    }
    std::unique_lock lock(r.mutex);
    if (auto it = r.names.find(key); it != r.names.end())
        return it->second;
    auto& slot = r.derived[key];
    slot = std::make_unique<std::string>(NameFromTypeInfo(type));
    r.names.emplace(key, slot->c_str());
    return slot->c_str();
}

} // namespace

bool ClassNameRegistry::Register(std::type_info const& type, char const* className) {
    Registry& r = TheRegistry();
    std::unique_lock lock(r.mutex);
    r.names.emplace(std::type_index(type), className);
    return true;
}

char const* ClassNameRegistry::Lookup(std::type_info const& type) {
    // A type keeps the name it was first answered with: registrations never replace one, and
    // names made for unregistered classes stay. So each thread may keep its last answer,
    // which serves the runs of objects of one class that an archive writes without a lock.
    thread_local std::type_info const* lastType = nullptr;
    thread_local char const* lastName = nullptr;
    if (lastType == &type)
        return lastName;
    char const* name = FindName(type);
    lastType = &type;
    lastName = name;
    return name;
}
