// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace qrb {

class CAudioParamCollector;

/// Whether a guard waits for the parameter lock. On the audio thread it is only tried.
enum class EAudioParamWait { wait, tryOnly };

/// Holds the parameters of an instance for the length of a scope. One recursive lock stands behind all of them, so that
/// work on several parameters cannot deadlock. When the last guard goes, calls that had to wait for that are announced to
/// the instance's owner.
class CAudioParamGuard {
public:
    [[nodiscard]] explicit CAudioParamGuard(CAudioParamCollector& collector,
                                            EAudioParamWait wait = EAudioParamWait::wait);
    ~CAudioParamGuard();
    CAudioParamGuard(const CAudioParamGuard&) = delete;
    CAudioParamGuard& operator=(const CAudioParamGuard&) = delete;

    /// False if the lock was busy and the guard was not to wait.
    [[nodiscard]] bool isHeld() const { return m_isHeld; }
    [[nodiscard]] bool isAudio() const { return m_isAudio; }

private:
    CAudioParamCollector& m_collector;
    bool m_isAudio;
    bool m_isHeld;
};

} // namespace qrb
