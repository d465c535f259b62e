// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioModule.h"
#include "Audio/Viz/CAudioVizData.h"
#include "Audio/Viz/CAudioVizWriter.h"

#include <memory>

namespace qrb {

/// Module that measures its line in periods and posts a record at the end of each. The signal passes through it
/// unchanged. While nobody listens it does nothing else, and it starts anew with the first listener.
class CModStatsModule : public CAudioModule {
public:
    /// Shortest period in samples.
    static constexpr int kMinPeriod = 32;

    void start() override;
    void process() override;

protected:
    /// Rate of a node without one of its own: that of the editor that looks.
    static constexpr double kEditorRate = 0.0;

    /// Takes samples of ports 0 and 1 in; a port without a line reads as silence.
    virtual void measure(const double* a, const double* b, int count) = 0;
    /// Ends the period and gives its record, or null where none is ready to be filled. Place and time are set behind it.
    [[nodiscard]] virtual std::unique_ptr<CAudioVizData> makeRecord(CAudioVizWriter& writer) = 0;
    /// Forgets what has been measured.
    virtual void clearStats() = 0;

    /// A fresh period of so many records a second.
    void startPeriod(double rate);
    /// Samples of a period: even, at least kMinPeriod.
    [[nodiscard]] int period() const { return m_period; }

private:
    void findPeriod();
    void endPeriod(double endTime);

    CAudioVizWriter m_writer;
    double m_rate = kEditorRate;
    int m_period = kMinPeriod;
    int m_left = kMinPeriod;
    bool m_isRunning = false;
};

} // namespace qrb
