#include "qv/platform/Uuid.h"

#include <qv/measures/BGuid.h>

using namespace qv::platform;

QV_REGISTER_CLASSNAME(BGuid);

BGuid::BGuid() {
    // A machine without a network address answers 1739 and gives a local identifier; the
    // second call's identifier is the one kept, whatever it answers.
    if (UuidCreate(&m_guid) == RPC_S_UUID_NO_ADDRESS)
        UuidCreate(&m_guid);
}

BGuid::BGuid(_GUID const& id) : m_guid(id) {}

BGuid::BGuid(char16_t const* text) {
    if (UuidFromStringW(text, &m_guid) != RPC_S_OK)
        m_guid = _GUID{};
}

BGuid::BGuid(BGuid const& other) : BSmartObj(other) {
    if (UuidFromStringW(other.ToString().CStr(), &m_guid) != RPC_S_OK)
        m_guid = _GUID{};
}

BGuid& BGuid::operator=(BGuid const& other) {
    m_guid = other.m_guid;
    return *this;
}

WString BGuid::ToString() const {
    char16_t* text = nullptr;
    if (UuidToStringW(&m_guid, &text) != RPC_S_OK)
        return WString();
    WString result(text);
    RpcStringFreeW(&text);
    return result;
}

bool BGuid::operator==(BGuid const& other) const {
    RPC_STATUS status;
    return UuidEqual(&m_guid, &other.m_guid, &status) != 0;
}
