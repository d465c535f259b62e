// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CQrbStdAllocator.h"
#include "Platform/CRecursiveLock.h"

#include <array>
#include <cstddef>
#include <memory>

namespace qrb {

class CNotifierListeners;
class CUpdateNotifier;

/// Which notifiers exist, by address. An address is worth nothing until it has been found here, and even then it may be
/// that of a younger notifier at the same place; what is found tells the two apart, since listeners keep it and not the
/// address. No lock of the table is held while another lock is waited for. Thread: any.
class CNotifierTable : public CCheckedObject {
public:
    void add(const CUpdateNotifier* notifier, std::shared_ptr<CNotifierListeners> listeners);
    void remove(const CUpdateNotifier* notifier);
    /// The listeners of a living notifier, or null; the address is not read through.
    [[nodiscard]] std::shared_ptr<CNotifierListeners> find(const CUpdateNotifier* notifier);

private:
    static constexpr std::size_t kBucketCount = 64;

    struct CBucket {
        platform::CRecursiveLock lock{4000};
        CMap<const CUpdateNotifier*, std::shared_ptr<CNotifierListeners>> notifiers;
    };

    [[nodiscard]] CBucket& bucket(const CUpdateNotifier* notifier);

    std::array<CBucket, kBucketCount> m_buckets;
};

} // namespace qrb
