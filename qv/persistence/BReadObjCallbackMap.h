// The process-wide table of read functions: a class name found in an archive leads here to the
// code that builds the object. Storable classes register at start-up, from static
// initialisers, which is why the table has a fixed size and registering allocates nothing.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/SP.h>

class BArchive;
class BSmartObj;

namespace NArchive {

// Builds an object from the archive positioned behind its prefix, for the stored version.
using ReadFunction = SP<BSmartObj> (*)(BArchive& archive, int version);

class QV_EXPORT BReadObjCallbackMap {
public:
    static constexpr int kCapacity = 512;
    static constexpr int kNameSize = 128; // with the terminator

    // The one table, made on first use so that it exists before any static initialiser that
    // registers, whatever the order of initialisation; it lives until the process ends.
    static BReadObjCallbackMap& Instance();

    // Null arguments are ignored. A name of 128 characters or more, or a full table, ends
    // the process with exit(-1): both can only happen while a program starts up.
    void Add(char const* className, ReadFunction read);
    // The first function registered under exactly this name (case counts), or null.
    ReadFunction Find(char const* className) const;

private:
    BReadObjCallbackMap() = default;

    char m_names[kCapacity][kNameSize] = {};
    ReadFunction m_functions[kCapacity] = {};
    int m_count = 0;
};

} // namespace NArchive

QV_EXPORT void RegisterArchiveCallback(char const* className, NArchive::ReadFunction read);
