/// \file
/// BFramesPerSecondCounter: the frame rate over a sliding time span. See docs/measures.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/containers/BArray.h>

/// The rate is an average over the frames of the last span, but over at least two frames,
/// however long ago. A plain value: one thread at a time uses it.
class QV_EXPORT BFramesPerSecondCounter {
public:
    /// The span is one second divided by rate: 1.0 gives a second, 2.0 half a second.
    explicit BFramesPerSecondCounter(double rate = 1.0);

    /// Notes a frame now, and forgets the oldest frames beyond the span, keeping two.
    void AddFrame();
    /// Frames per second over the frames held; 0.0 with fewer than two.
    double Fps() const;
    /// Forgets all frames.
    void Restart();

private:
    long long m_frequency;
    BArray<long long> m_frames{128};
    long long m_span;
};
