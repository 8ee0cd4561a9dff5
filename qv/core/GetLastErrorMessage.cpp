#include <qv/core/GetLastErrorMessage.h>
#include <qv/platform/SystemError.h>

WString GetLastErrorMessage() {
    int code = qv::platform::GetLastError();
    return WString::FromUtf8(qv::platform::SystemMessage(code));
}
