/// \file
/// Class names in the stored form "class " plus the bare name, independent of how a compiler
/// names types. Each class enters its name here with QV_REGISTER_CLASSNAME in its source; a
/// class that offers a static CLASSNAME() declares it with QV_DECLARE_CLASSNAME in its body
/// (the declaration takes the access of the place where it stands); BSmartObj::ClassName()
/// then finds the name of an object's dynamic type by its type_info.
#pragma once

#include <qv/core/Export.h>
#include <typeinfo>

/// The process-wide table from type to stored class name. Any thread may register and look up
/// at any time; registrations usually run in static initialisers.
class QV_EXPORT ClassNameRegistry {
public:
    /// Enters a class under \p className, which must live as long as the process (a string
    /// literal). The first registration of a type wins; a type already looked up keeps the
    /// name it was answered with. Returns true, so that it can initialise a static.
    static bool Register(std::type_info const& type, char const* className);
    /// The registered name of the type. A class that never registered is named from the
    /// platform's type information as a last resort, in the same "class X" form (the
    /// demangled name, with any namespace). Never null; the text lives as long as the process.
    static char const* Lookup(std::type_info const& type);
};

/// Declares `static char const* CLASSNAME()`, answering "class " plus \p Name, in a class body.
#define QV_DECLARE_CLASSNAME(Name)                                                                 \
    static char const* CLASSNAME() noexcept {                                                      \
        return "class " #Name;                                                                     \
    }

/// Registers the class \p Name as "class " plus \p Name; write it once at namespace scope in
/// the class's source.
#define QV_REGISTER_CLASSNAME(Name)                                                                \
    [[maybe_unused]] static bool const qv_classname_registered_##Name =                            \
        ClassNameRegistry::Register(typeid(Name), "class " #Name)
