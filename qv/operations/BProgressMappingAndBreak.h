/// \file
/// A progress mapping that stops its loop: each update asks the registered progress manager,
/// whose TestUserBreak raises (BError 25070 as a rule) out of Next or StepTo into the loop's
/// function. Without a registered manager it is a plain mapping.
#pragma once

#include <qv/operations/BProgressMapping.h>

class QV_EXPORT BProgressMappingAndBreak : public BProgressMapping {
public:
    using BProgressMapping::BProgressMapping;

protected:
    /// The base update, then BProgressManager::InstanceTestUserBreak, which may raise.
    void UpdateStep() override;
};
