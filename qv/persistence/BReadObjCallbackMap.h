/// \file
/// NArchive::BReadObjCallbackMap: the process-wide table of read functions, and
/// RegisterArchiveCallback. See docs/archives.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/SP.h>

class BArchive;
class BSmartObj;

namespace NArchive {

/// Builds an object from the archive positioned behind its prefix, for the stored version,
/// reading what WriteData wrote for that version; null when it cannot.
using ReadFunction = SP<BSmartObj> (*)(BArchive& archive, int version);

/// A class name found in an archive leads here to the code that builds the object. Storable
/// classes register at start-up, from static initialisers, which is why the table has a fixed
/// size and registering allocates nothing. Rows are never removed. No lock: all registering
/// happens before archives are used, and then any thread may look up.
class QV_EXPORT BReadObjCallbackMap {
public:
    /// Rows of the table.
    static constexpr int kCapacity = 512;
    /// Bytes of a class name, with the terminator.
    static constexpr int kNameSize = 128;

    /// The one table, made on first use so that it exists before any static initialiser that
    /// registers, whatever the order of initialisation; it lives until the process ends.
    static BReadObjCallbackMap& Instance();

    /// Adds a row. Null arguments are ignored. A name of 128 characters or more, or a full
    /// table, ends the process with exit(-1): both can only happen while a program starts up.
    /// A name already there is not checked: the older row wins.
    void Add(char const* className, ReadFunction read);
    /// The first function registered under exactly this name (case counts), or null; null
    /// also for a null name. A linear walk.
    ReadFunction Find(char const* className) const;

private:
    BReadObjCallbackMap() = default;

    char m_names[kCapacity][kNameSize] = {};
    ReadFunction m_functions[kCapacity] = {};
    int m_count = 0;
};

} // namespace NArchive

/// Registers the read function of a class under its name (CLASSNAME(), "class X"), as
/// BReadObjCallbackMap::Add does.
QV_EXPORT void RegisterArchiveCallback(char const* className, NArchive::ReadFunction read);
