// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamDeferredCalls.h"
#include "Audio/CAudioParamPathTree.h"
#include "Audio/CAudioParamReaderPool.h"
#include "Audio/CAudioParamRenameMap.h"
#include "Audio/CAudioParamUpdatePool.h"
#include "Audio/CAudioParamUpdateQueue.h"
#include "Core/CObject.h"
#include "Core/CUpdateNotifier.h"
#include "Platform/CRecursiveLock.h"

#include <atomic>
#include <functional>
#include <memory>

namespace qrb {

class CAppData;
class CAudioEnv;
class CAudioParamFilter;
class CAudioParamRegistry;
class CSharedParam;

/// All parameters of one instance, and the queue that takes their changes to the audio side. Notifies the listeners of a
/// parameter, which attach to the collector with the parameter as their key.
class CAudioParamCollector : public CObject, public CUpdateNotifier {
public:
    static void declare(CObjectClassInfo& info);

    CAudioParamCollector();
    ~CAudioParamCollector() override;

    CErrorPtr initChilds() override;

    [[nodiscard]] CAudioEnv& env() const { return *m_env; }

    // Parameters and aliases only join. Whoever looks for them, enters or makes them waits for nobody, so the audio
    // thread may do so while it rewires.

    /// The parameter of a path, behind all its aliases; made if it does not exist. Thread: any.
    [[nodiscard]] CAudioParam& getParam(const CString& path);
    /// The same without making one: null for an unknown path. Thread: any.
    [[nodiscard]] CAudioParam* findParam(const CString& path) const;
    /// Whether an alias sends the path to another one. Thread: any.
    [[nodiscard]] bool isRenamed(const CString& path) const;
    /// Enters an alias of absolute paths. Thread: any.
    void addRename(const CString& original, const CString& renamed);
    /// Gives all paths below `twin` the aliases that the paths below `prefix` have. Thread: any.
    void addTwinRenames(const CString& prefix, const CString& twin);
    /// All parameters in the order of their paths. Thread: any; a parameter stays as long as the collector.
    void listParams(CArray<CAudioParam*>& out) const;
    /// The key that listeners of a parameter attach with.
    [[nodiscard]] static std::uint64_t listenerKey(const CAudioParam& param)
    {
        return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&param));
    }

    /// Parameters that came after `seen`, which is moved to the newest; null means all. Thread: any.
    void listNewParams(const CAudioParamPathEntry*& seen, CArray<CAudioParam*>& out) const;

    // Registries join and leave while the instance's tree is built and taken down; in between any thread may ask.

    /// An enumerated registry takes the parameters below its hierarchy away from all others; of several the first.
    void addRegistry(CAudioParamRegistry& registry);
    void removeRegistry(CAudioParamRegistry& registry);
    [[nodiscard]] std::span<CAudioParamRegistry* const> registries() const { return m_registries.span(); }
    /// The registry of that full name, or null. Thread: any.
    [[nodiscard]] CAudioParamRegistry* findRegistry(const CString& path) const;
    /// Whether a registry has the parameter of a path. Thread: any.
    [[nodiscard]] bool belongsTo(const CString& path, const CAudioParamRegistry& registry) const;
    /// All parameters of the instance are there: the master takes its first program. What fails is reported, and leaves
    /// the declared defaults.
    void completeRegistries();
    /// Before a user's change of a parameter: the presets that it belongs to are no longer those of their lists.
    /// Thread: any.
    void tellHandChange(const CAudioParam& param, std::int32_t group, const CAudioParamRoute& route = {});

    /// Mirrors a parameter in a block of application data. A link that exists already is kept. It starts at once if the
    /// parameter is bound, otherwise with the runDeferred() after that. Thread: the owner's.
    void addSharedParam(const CString& path, CAppData& store, const CString& dataName);

    /// Keeps a filter between parameters as long as there are parameters. Thread: the owner's.
    void addFilter(std::unique_ptr<CAudioParamFilter> filter);

    /// Splices a list of changes into the queue in one step, so that they reach the modules in one block. Thread: any.
    void splice(CAudioParamUpdateList& list);
    /// Takes the waiting changes over. Thread: audio, with the env's lock held, or any while no audio runs.
    void takeQueue();
    /// Applies what was taken to what modules read, and tells readers. Thread: audio, or any while no audio runs.
    void applyTaken();
    /// Counts the changes that have been applied to what modules read. Thread: as applyTaken().
    [[nodiscard]] std::uint32_t audioChangeCount() const { return m_audioChangeCount; }
    /// Both steps; takes the env's lock for the first. Thread: audio, or any while no audio runs.
    void flushQueue();
    /// Records waiting in the queue. Thread: any.
    [[nodiscard]] std::size_t waitingCount();

    /// Puts a call off until no parameter is held. The caller holds a guard.
    void defer(CAudioParamDeferredTarget& target, std::int32_t index, double value, const CAudioParamGuard& guard);
    /// The same where only the latest value of a target and index counts.
    void deferLatest(CAudioParamDeferredTarget& target, std::int32_t index, double value,
                     const CAudioParamGuard& guard);
    /// Takes all waiting calls of a target back. Thread: the owner's.
    void cancelDeferred(const CAudioParamDeferredTarget& target);
    /// Makes the calls that were put off and carries changes from and to application data, with nothing held.
    /// Thread: the owner's.
    void runDeferred();
    /// Whether runDeferred() has work, for owners that look from time to time. Thread: any.
    [[nodiscard]] bool hasDeferred() const { return m_hasDeferred.load(std::memory_order_acquire); }
    /// Called when runDeferred() gets work, at once if it has some already. Set by the owner before other threads know the instance. The hook runs on any
    /// thread, the audio thread too: it neither waits nor allocates, and does not call back.
    void setWakeHook(std::function<void()> hook);
    /// Notes that runDeferred() has work. Thread: any.
    void wakeDeferred();

    [[nodiscard]] CAudioParamUpdatePool& updatePool() { return m_updatePool; }

private:
    friend class CAudioParam;
    friend class CAudioParamGuard;
    friend class CAudioPresetGuard;

    [[nodiscard]] bool enterParams(EAudioParamWait wait);
    void leaveParams();
    void enterPreset();
    void leavePreset();
    void announceDeferred();

    void queue(CAudioParamUpdateRecord* record);
    [[nodiscard]] bool isWaiting(const CAudioParam& param);
    void deferChange(const CAudioParamDeferredCalls::CChange& change);
    void tellListeners(CAudioParam& param, const CAudioParamUpdate& record);
    void onBound();
    /// Has the registry that a parameter selects from activate its presets, if it is a selector.
    void selectPreset(const CAudioParam& param, const CAudioParamUpdate& record, const CAudioParamRoute& route);
    void takeDeferred();
    void runChanges();
    void runCalls();

    CAudioEnv* m_env = nullptr;

    CAudioParamPathTree m_params; ///< of CAudioParam
    CAudioParamRenameMap m_renames;

    platform::CRecursiveLock m_paramLock{4000};
    std::atomic<int> m_paramLockCount{0};
    std::atomic<int> m_presetLockCount{0};

    CAudioParamReaderPool m_readerPool;
    CAudioParamUpdatePool m_updatePool;
    CAudioParamUpdateQueue m_queue; ///< guarded by the env's lock
    CAudioParamUpdateList m_taken;  ///< audio thread only

    CAudioParamDeferredCalls m_deferred; ///< guarded by the parameter lock
    CAudioParamDeferredCalls m_running;  ///< owner's thread only
    bool m_isRunning = false;            ///< owner's thread only
    std::atomic<bool> m_isDeferredWaiting{false};
    std::atomic<bool> m_hasDeferred{false};
    std::function<void()> m_wakeHook;

    CArray<CAudioParamRegistry*, 8> m_registries; ///< in the order of the tree

    CArray<std::unique_ptr<CSharedParam>> m_sharedParams; ///< owner's thread only
    std::atomic<bool> m_hasSharedParams{false};
    std::uint32_t m_audioChangeCount = 0;

    CArray<std::unique_ptr<CAudioParamFilter>> m_filters; ///< goes first: filters leave their parameters
};

} // namespace qrb
