/// \file
/// A progress mapping for parallel loops. Raising out of a parallel region is not allowed, so
/// each update asks the registered progress manager whether to stop and, if so, counts it;
/// the loop body of every thread looks at IsStopping and skips its remaining work.
///
/// Steps change plain fields: the threads of a loop keep their calls of Next and StepTo apart,
/// for example with `#pragma omp critical` around the step. IsStopping may be called from any
/// thread at any time.
#pragma once

#include <atomic>
#include <cstdint>
#include <qv/operations/BProgressMapping.h>

class QV_EXPORT BProgressMappingOMP : public BProgressMapping {
public:
    BProgressMappingOMP(unsigned long long steps, unsigned long long messageNum)
        : BProgressMapping(steps, messageNum) {}
    /// Copies every field, the stop count included.
    BProgressMappingOMP(BProgressMappingOMP const& other)
        : BProgressMapping(other), m_stop_count(other.m_stop_count.load()) {}
    BProgressMappingOMP& operator=(BProgressMappingOMP const& other) {
        BProgressMapping::operator=(other);
        m_stop_count.store(other.m_stop_count.load());
        return *this;
    }

    /// True once an update learnt that the loop is to stop; it stays true.
    bool IsStopping() const { return m_stop_count.load(std::memory_order_relaxed) != 0; }

protected:
    /// The base update, then BProgressManager::InstanceBreakLongOperation(false); a true
    /// answer increments the stop count. Raises nothing.
    void UpdateStep() override;

    std::atomic<std::uint32_t> m_stop_count{0};
};
