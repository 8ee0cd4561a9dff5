/// \file
/// Progress of a loop: turns the loop's steps into a fixed number of progress units, sent to
/// the dispatcher as MSG_PROGRESS_STEP with the number of new units. The mapping adapts by
/// itself how often it does any work: it keeps a stride, and only a step that passes a
/// multiple of the stride updates, so that updates come about every 50 to 100 ms whatever a
/// step costs. A step that does not update is one addition, one remainder and one comparison,
/// inline, with no call of any kind. Design notes and figures: docs/operations.md.
///
/// A mapping lives on the stack of the looping function and belongs to one thread; a
/// parallel loop that shares one keeps its calls of Next and StepTo apart (a critical region).
#pragma once

#include <cstdint>
#include <qv/core/Export.h>

class QV_EXPORT BProgressMapping {
public:
    /// A loop of \p steps steps that reports \p messageNum progress units in all. Steps of 0
    /// make every step worth one unit, up to \p messageNum; a \p messageNum of 0 sends nothing.
    BProgressMapping(unsigned long long steps, unsigned long long messageNum);
    /// Copies every field, the tick of the last update included.
    BProgressMapping(BProgressMapping const& other) = default;
    BProgressMapping& operator=(BProgressMapping const& other) = default;
    /// Sends nothing: units of a loop that ends between two updates stay unsent.
    virtual ~BProgressMapping();

    /// Advances by \p n steps; true when the step passed a multiple of the stride and the
    /// mapping updated (reported, and in the variants asked whether to stop).
    bool Next(unsigned long long n) {
        m_step += n;
        return Passed(n);
    }
    /// Advances to the absolute step \p target; a target at or below the current step changes
    /// nothing and gives false. Otherwise as Next with the difference.
    bool StepTo(unsigned long long target) {
        if (target <= m_step)
            return false;
        unsigned long long const n = target - m_step;
        m_step = target;
        return Passed(n);
    }
    /// Replaces the total of steps. Units already sent stand; the step stays where it is.
    void SetSteps(unsigned long long steps);
    /// @name The total of steps, the current step and the progress units in all.
    ///@{
    unsigned long long GetSteps() const { return m_steps; }
    unsigned long long Step() const { return m_step; }
    unsigned long long ProgressMessageNum() const { return m_message_num; }
    ///@}

protected:
    /// Sends the units that have come due since the last update and adapts the stride to the
    /// time since then. The variants add their question to the progress manager.
    virtual void UpdateStep();

    unsigned long long m_steps;
    unsigned long long m_message_num;
    double m_ratio;
    unsigned long long m_sent = 0;
    unsigned long long m_step = 0;
    // Always a power of two: it starts at 1 and is only ever doubled or halved.
    unsigned long long m_stride = 1;
    std::uint32_t m_last_tick;

private:
    // Whether the last advance of n steps passed a multiple of the stride, and if so the update.
    bool Passed(unsigned long long n) {
        if (m_step % m_stride >= n)
            return false;
        UpdateStep();
        return true;
    }
};
