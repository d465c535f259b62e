// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Interface/CParamInterfaceIds.h"
#include "Core/CObject.h"
#include "Core/CObjectClassInfo.h"

#include <cstdint>

namespace qrb {

class CAudioPreset;
class CInputStream;
class CParamInterfaceClientConnector;
class CParamInterfaceMessage;
class CParamInterfaceParamListener;
class CParamInterfaceRegistryListener;
struct CAudioParamUpdate;

/// Editor side of an interface: what the editor's objects ask of the engine goes out as messages, carried out when the
/// call returns; what the engine tells comes on the connector's timer. Raises "undo-history-changed". A message that
/// fails is reported, unless the call gives its error. Thread: the owner's.
class CParamInterfaceClient : public CObject {
public:
    /// Most lines of a history, and most names of a registry, that are believed.
    static constexpr std::int32_t kMaxTextCount = 65536;

    static void declare(CObjectClassInfo& info);

    CParamInterfaceClient();
    ~CParamInterfaceClient() override;

    CErrorPtr initChilds() override;
    void unlink() override;

    [[nodiscard]] std::uint32_t clientId() const { return m_clientId; }
    /// Works on a message of the base that stands next in the stream.
    CErrorPtr processMessage(CInputStream& in);

    // Parameters. A listener, not owned, leaves before it goes. 0 is the number of nothing, given when there are too many.

    [[nodiscard]] std::int32_t listenParam(const CString& path, CParamInterfaceParamListener& listener);
    void unlistenParam(std::int32_t id);
    /// `undoId`: the gesture that the change belongs to; 0 for none.
    void changeParam(std::int32_t id, const CAudioParamUpdate& update, std::int32_t undoId);
    /// Group -1: all groups; element -1: the whole group. `isFromTemplate`: to the value of the very first element.
    void resetParam(std::int32_t id, std::int32_t group, std::int32_t element, std::int32_t undoId,
                    bool isFromTemplate);

    // The history.

    /// Opens a gesture. It may become one with the last if both have the same tag.
    [[nodiscard]] std::int32_t createUndoData(const CString& label, bool isMerging, std::int32_t mergeTag);
    /// Closes a gesture without entering it; what it has changed stays.
    void removeUndoData(std::int32_t undoId);
    /// Closes a gesture and enters it; an empty label keeps the one that it has.
    void submitUndoData(std::int32_t undoId, const CString& label);
    void setUndoHistoryPos(std::int32_t position);
    void requestUndoHistory();
    /// The lines of the history, and how many gestures are applied, as they came last.
    void getUndoHistory(CArray<CString>& outLabels, std::int32_t& outPosition) const;

    // Registries.

    [[nodiscard]] std::int32_t listenRegistry(const CString& path, CParamInterfaceRegistryListener& listener);
    void unlistenRegistry(std::int32_t id);
    void setCurrentProgram(std::int32_t id, std::int32_t index);
    void renamePreset(std::int32_t id, std::int32_t index, const CString& name);
    void activateFactoryPreset(std::int32_t id, std::int32_t index);
    /// Group -1: all groups.
    CErrorPtr activatePreset(std::int32_t id, const CAudioPreset& preset, std::int32_t group);
    void requestPreset(std::int32_t id, std::int32_t tag, bool isFactory, std::int32_t index, std::int32_t group);
    void requestBank(std::int32_t id, std::int32_t tag, bool isFactory);
    CErrorPtr setDefaultPreset(std::int32_t id, const CAudioPreset& preset);
    void activateDefaultPreset(std::int32_t id);
    void exchangeShadowPreset(std::int32_t id);
    void updateShadowPreset(std::int32_t id);

    // Handlers of messages.
    CErrorPtr onUpdateUndoHistory();
    CErrorPtr onUpdateParamInfo();
    CErrorPtr onUpdateParam();
    CErrorPtr onUpdateRegistry();
    CErrorPtr onRegistryData();

protected:
    /// The message in hand, behind its name.
    [[nodiscard]] CInputStream& message() { return *m_message; }
    /// Sends a message; the error is the base's answer.
    CErrorPtr ask(const CParamInterfaceMessage& message);
    /// Sends a message and reports its failure, but not the same one over and over.
    void tell(const CParamInterfaceMessage& message);
    CErrorPtr readTexts(CArray<CString>& texts, std::int32_t count);

private:
    [[nodiscard]] CParamInterfaceParamListener* findParam(std::int32_t id) const;
    [[nodiscard]] CParamInterfaceRegistryListener* findRegistry(std::int32_t id) const;
    CErrorPtr readValue(CParamInterfaceParamListener& listener);

    CParamInterfaceClientConnector* m_connector = nullptr;
    std::uint32_t m_clientId = 0;
    CObjectClassInfo m_ownEvents; ///< what every object can do is not for messages
    CInputStream* m_message = nullptr;
    CString m_lastFailure;

    CParamInterfaceIds m_paramIds;
    CParamInterfaceIds m_registryIds;
    CParamInterfaceIds m_undoIds;
    CMap<std::int32_t, CParamInterfaceParamListener*> m_params;
    CMap<std::int32_t, CParamInterfaceRegistryListener*> m_registries;
    CArray<CString> m_history;
    std::int32_t m_historyPosition = 0;
};

} // namespace qrb
