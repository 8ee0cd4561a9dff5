#include <qv/operations/BProgressManager.h>
#include <qv/operations/BProgressMappingAndBreak.h>

void BProgressMappingAndBreak::UpdateStep() {
    BProgressMapping::UpdateStep();
    BProgressManager::InstanceTestUserBreak();
}
