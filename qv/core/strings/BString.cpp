#include <qv/core/strings/BString.h>
#include <qv/platform/CodePage.h>

char const* const BString::static_empty_str = kEmptyText;

BString::BString(char16_t const* wide) {
    if (!wide || !*wide)
        return;
    // The size asked for includes the terminator, and the block keeps that capacity.
    int size = qv::platform::WideCharToMultiByte(wide, -1, nullptr, 0);
    if (size <= 1)
        return;
    Block* b = CreateShared(static_cast<size_type>(size));
    qv::platform::WideCharToMultiByte(wide, -1, b->Text(), size);
    b->Text()[size - 1] = 0;
    b->ForgetLength(); // left to a scan: the block was made empty
    Reset(b);
}
