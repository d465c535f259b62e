// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CQrbStdAllocator.h"
#include "Platform/CRecursiveLock.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace qrb {

class CNotifierListeners;
class CUpdateNotifier;
struct CNotifierRef;

/// Which notifiers exist, by address and serial number: an address alone may be that of a younger notifier, even of one
/// that is half built. No lock of the table is held while another lock is waited for. Thread: any.
class CNotifierTable : public CCheckedObject {
public:
    /// A number for the next notifier.
    [[nodiscard]] std::uint64_t takeSerial() { return ++m_lastSerial; }
    void add(const CUpdateNotifier* notifier, std::shared_ptr<CNotifierListeners> listeners);
    void remove(const CUpdateNotifier* notifier);
    /// The listeners of a living notifier, or null; the address is not read through.
    [[nodiscard]] std::shared_ptr<CNotifierListeners> find(const CNotifierRef& ref);

private:
    static constexpr std::size_t kBucketCount = 64;

    struct CBucket {
        platform::CRecursiveLock lock{4000};
        CMap<const CUpdateNotifier*, std::shared_ptr<CNotifierListeners>> notifiers;
    };

    [[nodiscard]] CBucket& bucket(const CUpdateNotifier* notifier);

    std::atomic<std::uint64_t> m_lastSerial{0};
    std::array<CBucket, kBucketCount> m_buckets;
};

} // namespace qrb
