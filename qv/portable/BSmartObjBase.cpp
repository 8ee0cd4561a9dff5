#include <qv/portable/BSmartObjBase.h>

std::atomic<std::int32_t> BSmartObjBase::m_unique_id_counter{0};
