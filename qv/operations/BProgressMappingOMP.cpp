#include <qv/operations/BProgressManager.h>
#include <qv/operations/BProgressMappingOMP.h>

void BProgressMappingOMP::UpdateStep() {
    BProgressMapping::UpdateStep();
    if (BProgressManager::InstanceBreakLongOperation(false))
        m_stop_count.fetch_add(1);
}
