// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

namespace qrb {

class CAudioParam;

/// A parameter that tells the graph or the editor what the host does. Never waits: while the parameters are held
/// elsewhere the value stays here, until the next flush(). Thread: any, once attached.
class CHostParam {
public:
    /// `param` must outlive this; without one, values are dropped.
    void attach(CAudioParam& param) { m_param = &param; }
    void set(double value);
    void flush();

private:
    CAudioParam* m_param = nullptr;
    std::atomic<double> m_value{0.0};
    std::atomic<bool> m_isPending{false};
};

} // namespace qrb
