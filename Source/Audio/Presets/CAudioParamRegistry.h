// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/CAudioParam.h"
#include "Audio/Presets/CAudioParamRegistryNameListener.h"
#include "Audio/Presets/CAudioParamUndoHistory.h"
#include "Audio/Presets/CAudioPresetBank.h"
#include "Core/CObject.h"
#include "Core/CUpdateNotifier.h"
#include "Platform/CRecursiveLock.h"

#include <memory>

namespace qrb {

class CAudioParamUndo;
class CAudioRoutingInfoProvider;

/// Owns a subtree of an instance's parameters as far as presets go: takes presets of it and puts them back. The master
/// has the programs of the session as well; an enumerated one offers a fixed list from which a parameter elsewhere
/// selects. Notifies with key 0 when names or the current program change.
///
/// Locks, in this order: the instance's parameters, then the bank. Listeners are called without the bank's lock.
/// Thread: any, unless told otherwise.
class CAudioParamRegistry : public CObject, public CUpdateNotifier {
public:
    /// Visible name of a panel's preset once one of its values was changed by hand.
    static constexpr const char* kUserName = "User";

    static void declare(CObjectClassInfo& info);

    CAudioParamRegistry();
    ~CAudioParamRegistry() override;

    CErrorPtr init() override;
    CErrorPtr initChilds() override;

    [[nodiscard]] const CString& id() const { return m_id; }
    [[nodiscard]] bool isMaster() const { return m_isMaster; }
    [[nodiscard]] bool isEnumerated() const { return m_isEnumerated; }
    [[nodiscard]] CAudioParamCollector& paramCollector() const { return *m_collector; }
    /// Whether a path lies below the hierarchy.
    [[nodiscard]] bool isAbove(const CString& path) const;
    /// Set before other threads know the instance; null for none.
    void setRoutingListener(CAudioRoutingInfoProvider* listener) { m_routingListener = listener; }
    /// Puts the first program into the parameters, persistent ones too, and into what a reset returns to. Master only;
    /// once, when the instance's parameters are there.
    CErrorPtr applyInitial();

    // Presets. All of a preset is checked before anything changes, so an error leaves everything as it was.

    /// Activates a preset payload in a group, or in all (-1). With a source the master takes it as the host's state:
    /// persistent parameters count, the program is found by its name, and history and shadow are cleared.
    CErrorPtr activatePreset(CInputStream& in, const void* source, std::int32_t group);
    CErrorPtr activatePreset(const CAudioPreset& preset, const void* source, std::int32_t group);
    /// Writes a preset payload. Master: one of the built-in presets or of the session, where -1 is the current one as
    /// it sounds now. Others: what sounds now, of one group or of all (-1).
    CErrorPtr acquirePreset(bool isFactory, std::int32_t index, std::int32_t group, COutputStream& out);
    /// Writes a bank payload: the built-in presets, or the session with the current program as it sounds now and its
    /// persistent values in all programs. Master only.
    CErrorPtr acquireBank(bool isFactory, COutputStream& out);
    /// Makes a preset payload what resets return to. Master only.
    CErrorPtr setDefaultPreset(CInputStream& in);
    CErrorPtr setDefaultPreset(const CAudioPreset& preset);
    /// The preset that the parameters make up now, of one group or of all (-1).
    [[nodiscard]] CAudioPreset capture(std::int32_t group);

    // Programs: master only, others do nothing and have none.

    CErrorPtr setCurrentProgram(std::int32_t index, const void* source);
    CErrorPtr activateFactoryPreset(std::int32_t index);
    void renamePreset(std::int32_t index, const CString& name, const void* source);
    /// Names with their ids, and the current program; -1 for the built-in presets.
    void getPresetNames(bool isFactory, CArray<CString>& outNames, std::int32_t& outCurrent) const;
    /// Whole name of a program of the session; empty for an index out of range.
    [[nodiscard]] CString getPresetName(std::int32_t index) const;
    [[nodiscard]] std::int32_t getProgramCount() const;
    [[nodiscard]] std::int32_t getCurrentProgram() const;
    /// Returns all preset content to the reset values.
    void masterReset();
    /// Makes the shadow of the A/B comparison equal to what sounds now.
    void updateShadowPreset();
    /// Exchanges what sounds now with the shadow, histories included.
    CErrorPtr exchangeShadowPreset();

    // Calls from the instance's parameters, which are held.

    /// A parameter that selects from this registry's list has changed.
    void onSelector(const CAudioParamUpdate& record, const CAudioParamRoute& route);
    /// A parameter is about to be changed by hand: what it belongs to is no preset of the list any more.
    void onHandChange(const CAudioParam& param, std::int32_t group, const CAudioParamRoute& route);
    /// Somebody else has set the parameter that shows the current program's name.
    void onNameParam(const CString& visibleName);

    /// Whether a routing preset makes sense where mid/side or the side-chain cannot be had. One that cannot be read
    /// never does. Thread: any.
    [[nodiscard]] static bool isRoutingPresetUsable(const CAudioPreset& preset, bool allowMidSide, bool allowSidechain);

private:
    /// Where a preset goes: into the values, or into what a reset returns to; and which parameters count.
    struct CApplyPlace {
        CAudioParam::CLoadPlace place = {};
        bool withPersistent = false;
    };
    /// An item of a preset, checked and ready to be applied.
    struct CCheckedItem {
        CAudioParam* param;
        const CAudioParamInfo* info;
        CAudioParamStorage values;
    };
    struct CPathRemap {
        CString from;
        CString to;
    };

    CErrorPtr readRemaps(const CString& text);
    void createBanks();
    void readDefaultPreset();
    void readChoices();
    CErrorPtr applyStart(const CAudioPreset& preset);

    // With the parameters held.
    void enterParams();
    [[nodiscard]] CAudioParam* findMember(const CString& key);
    [[nodiscard]] const CAudioParamInfo* findDeclared(const CString& path) const;
    [[nodiscard]] bool isContent(const CAudioParamInfo& info, bool withPersistent) const;
    CErrorPtr checkItems(const CAudioPreset& preset, bool withPersistent, CArray<CCheckedItem>& items);
    CErrorPtr checkId(const CAudioPreset& preset) const;
    void applyItems(CArray<CCheckedItem>& items, const CApplyPlace& to, const CAudioParamRoute& route);
    /// Applies a preset in whole, or does nothing but return an error.
    CErrorPtr applyPreset(const CAudioPreset& preset, const CApplyPlace& to, const CAudioParamRoute& route);
    void setName(const CString& name, std::int32_t group, const CAudioParamRoute& route);
    void setNameParam(const CString& name, std::int32_t group, const void* source, const CAudioParamRoute& route);
    [[nodiscard]] bool setSessionName(std::int32_t index, const CString& name);
    [[nodiscard]] CAudioParam* nameParam() const;
    void captureItem(CAudioPreset& preset, const CString& key, const CAudioParam& param, std::int32_t group,
                     const CAudioParamGuard& guard) const;
    void select(std::int32_t index, const CAudioParam::CLoadPlace& place, const CAudioParamRoute& route);
    void makeShadow();
    void refreshCurrent();
    void spreadPersistent();
    void forgetHistories();
    CErrorPtr activateNamed(const CAudioPreset& preset, const CString& label, std::int32_t group);
    CErrorPtr loadHostState(const CAudioPreset& preset, const void* source);
    [[nodiscard]] CString activationLabel(std::int32_t group) const;
    void tellListeners(const void* source);

    CString m_hierarchy; ///< with "." at its end
    CArray<CPathRemap> m_remaps;
    CString m_id;
    CString m_naming;
    CString m_namePath;
    CString m_groupNamesPath;
    bool m_isMaster = false;
    bool m_isEnumerated = false;
    bool m_isElementEnum = false;
    bool m_isGlobalStorable = false;
    CAudioParamCollector* m_collector = nullptr;
    CAudioParamUndo* m_undo = nullptr; ///< null: no history
    CAudioRoutingInfoProvider* m_routingListener = nullptr;
    CAudioParamRegistryNameListener m_nameListener{*this};

    // Guarded by the parameters' lock.
    CMap<CString, CAudioParam*> m_params; ///< by the path below the hierarchy
    const CAudioParamPathEntry* m_newestSeen = nullptr;
    bool m_isSelecting = false;
    CArray<std::unique_ptr<CAudioParamUndoHistory>> m_histories; ///< of the programs; the current one's is in use
    std::unique_ptr<CAudioParamUndoHistory> m_shadowHistory;
    bool m_isDefaultLoaded = false;

    std::unique_ptr<CAudioPresetBank> m_choices; ///< null without a list; not changed once read

    // Written with both locks held, read with either.
    mutable platform::CRecursiveLock m_bankLock{4000};
    CAudioPresetBank m_factory;
    CAudioPresetBank m_session;
    std::int32_t m_current = 0;
    std::unique_ptr<CAudioPreset> m_shadow;
};

} // namespace qrb
