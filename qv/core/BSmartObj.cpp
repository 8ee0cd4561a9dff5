#include <charconv>
#include <cstdint>
#include <qv/core/BSmartObj.h>
#include <qv/persistence/BArchive.h>
#include <string_view>

QV_REGISTER_CLASSNAME(BSmartObj);

unsigned long long BSmartObj::AllocatedMemory() const {
    return 0;
}

BSmartObj const& BSmartObj::operator=(BSmartObj const&) {
    return *this;
}

void BSmartObj::WriteData(BArchive&) const {}

void BSmartObj::UpdateAssociations(BArchive&) {}

char const* BSmartObj::ArchiveName() const {
    return ClassName();
}

bool BSmartObj::VerifyObj() {
    return true;
}

int BSmartObj::Version() const {
    return 0;
}

WString BSmartObj::Properties() const {
    return WString(BString("Type : ")) + WString(BString(ClassName()));
}

char const* BSmartObj::ClassName() const {
    return ClassNameRegistry::Lookup(typeid(*this));
}

BString BSmartObj::Id() const {
    return Id(static_cast<void*>(const_cast<BSmartObj*>(this)));
}

BString BSmartObj::Id(void* pointer) {
    return Id(static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(pointer)));
}

BString BSmartObj::Id(unsigned long long number) {
    char text[17] = {}; // 16 hexadecimal digits at the most
    std::to_chars(text, text + 16, number, 16);
    return BString(text);
}

bool BSmartObj::IsValidObject(BSmartObj* object) {
    // A probe for a pointer of doubtful standing. POSIX offers no safe way to catch an
    // invalid address inside one call, so the guard takes what C++ can catch; a null pointer
    // is what such a probe is usually handed, and it is refused without a call.
    if (!object)
        return false;
    try {
        object->VerifyObj();
        return true;
    } catch (...) {
        return false;
    }
}

SP<BSmartObj> BSmartObj::Read(BArchive&, int) {
    return nullptr;
}

void BSmartObj::WritePrefix(BArchive& archive, BString name) const {
    // The index is asked for with the address of the BSmartObj part, which is what the
    // archive keys objects by, also for classes that have BSmartObj as a virtual base. The id
    // is the text Id gives, written from the digits: a record's prefix makes no string.
    unsigned int index = archive.MapPointerToIndex(const_cast<BSmartObj*>(this));
    char digits[16];
    std::string_view id(digits, std::to_chars(digits, digits + 16, index, 16).ptr);
    char const* className = ArchiveName();
    archive << id << name << std::string_view(className ? className : "")
            << static_cast<std::int32_t>(Version());
    // The size is patched in behind the data by the object archive; six was the last format
    // with 32-bit sizes.
    if (archive.Version() == 6)
        archive << std::uint32_t{0xEAEAEAEA};
    else
        archive << 0xEAEAEAEAEAEAEAEAull;
}

bool BSmartObj::ReadPrefix(BArchive& archive, BString& id, BString& name, BString& className,
                           int& version, unsigned long long& size) {
    try {
        archive >> id >> name >> className;
    } catch (ARCHIVE_EXCEPTION) {
        return false;
    }
    std::int32_t v = version;
    archive >> v;
    if (archive.CanRead())
        version = v;
    if (archive.Version() >= 8) {
        archive >> size;
    } else {
        std::int32_t narrow = static_cast<std::int32_t>(size);
        archive >> narrow;
        if (archive.CanRead())
            size = static_cast<unsigned long long>(static_cast<long long>(narrow));
    }
    return archive.CanRead();
}
