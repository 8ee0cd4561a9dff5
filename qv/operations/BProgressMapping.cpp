// The update of a progress mapping. Units due are the step times the ratio, truncated, and
// never more than the total; only new units are sent, as one increment. The stride then
// follows the time since the last update: doubled below 50 ms, halved (down to 1) above
// 100 ms, so updates settle at 50 to 100 ms apart. Ticks are compared by 32-bit difference,
// which is immune to the tick count's wrap.
#include <qv/operations/BProgressMapping.h>
#include <qv/operations/MessageNumbers.h>
#include <qv/operations/QVPost.h>
#include <qv/platform/TickCount.h>

namespace {
constexpr std::uint32_t kFasterThan = 50;  // ms: updates closer than this double the stride
constexpr std::uint32_t kSlowerThan = 100; // ms: updates further apart halve it
// The largest power of two of 64 bits: doubling it once more would wrap to 0, and the
// remainder of Next would divide by zero.
constexpr unsigned long long kMaxStride = 1ull << 63;
// 2^64 as a double: a product at or above it does not fit the units' integer.
constexpr double kUnitsOverflow = 18446744073709551616.0;

double Ratio(unsigned long long steps, unsigned long long messageNum) {
    return steps == 0 ? 1.0 : static_cast<double>(messageNum) / static_cast<double>(steps);
}
} // namespace

BProgressMapping::BProgressMapping(unsigned long long steps, unsigned long long messageNum)
    : m_steps(steps), m_message_num(messageNum), m_ratio(Ratio(steps, messageNum)),
      m_last_tick(qv::platform::GetTickCount()) {}

BProgressMapping::~BProgressMapping() = default;

void BProgressMapping::SetSteps(unsigned long long steps) {
    m_steps = steps;
    m_ratio = Ratio(m_steps, m_message_num);
}

void BProgressMapping::UpdateStep() {
    double const exact = static_cast<double>(m_step) * m_ratio;
    unsigned long long due =
        exact >= kUnitsOverflow ? m_message_num : static_cast<unsigned long long>(exact);
    if (due > m_message_num)
        due = m_message_num;
    if (m_sent < due) {
        QVSend(MSG_PROGRESS_STEP, due - m_sent, 0);
        m_sent = due;
    }

    std::uint32_t const tick = qv::platform::GetTickCount();
    std::uint32_t const elapsed = tick - m_last_tick;
    if (elapsed < kFasterThan && m_stride < kMaxStride)
        m_stride <<= 1;
    else if (elapsed > kSlowerThan && m_stride > 1)
        m_stride >>= 1;
    m_last_tick = tick;
}
