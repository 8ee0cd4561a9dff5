#include <qv/core/files/BFile.h>
#include <qv/profiles/BBinProfile.h>
#include <qv/profiles/BProfile.h>
#include <qv/profiles/OpenProfile.h>

SP<BProfileBase> OpenProfile(WString path) {
    if (!BFile(path.CStr(), u"rb"))
        return SP<BProfileBase>();
    SP<BBinProfile> binary = new BBinProfile(path, kProfileReadOnly);
    if (binary->IsValid())
        return binary;
    return new BProfile(path, kProfileReadOnly);
}
