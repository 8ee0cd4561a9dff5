#include <qv/profiles/BVarMemBlock.h>
#include <qv/profiles/BVariant.h>
#include <qv/profiles/TVariant.h>

template class TVariant<int>;
template class TVariant<double>;
template class TVariant<bool>;
template class TVariant<BString>;
template class TVariant<WString>;

void BVariant::WriteTo(std::FILE* file) {
    if (!file)
        return;
    std::uint32_t code = GetTypeCode();
    std::fwrite(&code, sizeof code, 1, file);
    WriteValue(file);
}

SP<BVariant> BVariant::Make(std::uint32_t typeCode) {
    switch (typeCode) {
    case kInt:
        return new TVariant<int>;
    case kNarrowString:
        return new TVariant<BString>;
    case kDouble:
        return new TVariant<double>;
    case kMemBlock:
        return new BVarMemBlock;
    case kBool:
        return new TVariant<bool>;
    case kWideString:
        return new TVariant<WString>;
    default:
        return SP<BVariant>();
    }
}
