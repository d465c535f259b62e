// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParamUpdateRecord.h"
#include "Core/CCheckedObject.h"

#include <atomic>
#include <cstddef>

namespace qrb {

/// Records of one instance: taken by who sends a change, given back by the audio side, freed or used again by the next
/// sender. What senders call is guarded by the instance's parameter lock.
class CAudioParamUpdatePool : public CCheckedObject {
public:
    static constexpr std::size_t kReady = 256;
    static constexpr std::size_t kKept = 1024;

    CAudioParamUpdatePool();
    ~CAudioParamUpdatePool() override;
    CAudioParamUpdatePool(const CAudioParamUpdatePool&) = delete;
    CAudioParamUpdatePool& operator=(const CAudioParamUpdatePool&) = delete;

    /// A fresh record. Thread: any with the parameter lock; `isAudio` on the audio thread, where nothing is freed and
    /// nothing is allocated as long as a record is left.
    [[nodiscard]] CAudioParamUpdateRecord* take(bool isAudio);
    /// Thread: any with the parameter lock.
    void give(CAudioParamUpdateRecord* record);
    /// Gives back without a lock and without freeing anything. Thread: audio.
    void giveFromAudio(CAudioParamUpdateRecord* record);

private:
    void collect(std::atomic<CAudioParamUpdateRecord*>& returned);

    CAudioParamUpdateRecord* m_free = nullptr;
    std::size_t m_freeCount = 0;
    std::atomic<CAudioParamUpdateRecord*> m_returnedPlain{nullptr};
    std::atomic<CAudioParamUpdateRecord*> m_returned{nullptr};
};

} // namespace qrb
