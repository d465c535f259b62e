// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Audio/Interface/CParamInterfaceUndoRecord.h"
#include "Audio/Presets/CAudioParamUndo.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CQrbStdAllocator.h"

#include <cstddef>
#include <memory>

namespace qrb {

class CAudioParam;
class CAudioParamRegistry;
class CInputStream;
class CParamInterfaceBaseConnector;
class CParamInterfaceMessage;
class CParamListener;
class CRegistryListener;
struct CAudioParamUpdate;

/// Engine side of an interface: carries out what clients ask for by messages, and tells them what happens to the
/// parameters, registries and the history. A message names an event of this class, and the handler reads its fields; one
/// that cannot be read changes nothing. Clients are not trusted.
///
/// Locks, in this order: the connector's, this object's for a message, the parameters, the banks of registries, the
/// history's, those of queues.
class CParamInterfaceBase : public CAudioParamUndo {
public:
    /// Most gestures that a client may have open at a time.
    static constexpr std::size_t kMaxUndoRecords = 64;
    /// Most elements of which a gesture tells the begin and the end.
    static constexpr std::size_t kMaxGesturePlaces = 4096;
    /// Most parameters that exist only because a client has named them.
    static constexpr std::size_t kMaxNamedParams = 4096;
    /// Most requests of clients to follow a registry that may stand at a time.
    static constexpr std::size_t kMaxRegistryListeners = 1024;
    static constexpr std::size_t kMaxLabelLength = 1024;
    /// Most bytes that the texts or byte blocks of a parameter may come to by a client's change.
    static constexpr std::size_t kMaxItemBytes = std::size_t{1} << 20;

    static void declare(CObjectClassInfo& info);

    CParamInterfaceBase();
    ~CParamInterfaceBase() override;

    CErrorPtr initChilds() override;
    void unlink() override;

    /// Ends all that clients have going on, and takes no more messages. Called before what the clients use goes; waits for
    /// a message that is under way. Thread: any, with nothing held.
    void disconnect();

    // Calls of the connector, which serialises them.

    /// Carries out a message that stands next in the stream.
    CErrorPtr processMessage(CInputStream& in);
    /// A client is gone: forgets it, and closes its gestures as if it had submitted them.
    virtual void removeClient(std::uint32_t clientId);
    /// Sends a client the whole state of all it follows.
    virtual void tellAll(std::uint32_t clientId);

    // Handlers of messages.
    CErrorPtr onListenParam();
    CErrorPtr onUnlistenParam();
    CErrorPtr onChangeParam();
    CErrorPtr onResetParam();
    CErrorPtr onCreateUndoData();
    CErrorPtr onSubmitUndoData();
    CErrorPtr onRemoveUndoData();
    CErrorPtr onRequestUndoHistory();
    CErrorPtr onSetUndoHistoryPos();
    CErrorPtr onListenRegistry();
    CErrorPtr onUnlistenRegistry();
    CErrorPtr onSetCurrentProgram();
    CErrorPtr onRenamePreset();
    CErrorPtr onActivateFactoryPreset();
    CErrorPtr onActivatePreset();
    CErrorPtr onRequestPreset();
    CErrorPtr onRequestBank();
    CErrorPtr onSetDefaultPreset();
    CErrorPtr onActivateDefaultPreset();
    CErrorPtr onExchangeShadowPreset();
    CErrorPtr onUpdateShadowPreset();

protected:
    void onHistoryChanged() override;
    /// A client begins to change an element within a gesture, or has ended it. No parameter is held.
    virtual void beginChange(CAudioParam& param, std::int32_t group, std::int32_t element);
    virtual void endChange(CAudioParam& param, std::int32_t group, std::int32_t element);

    /// The message in hand, behind its name.
    [[nodiscard]] CInputStream& message() { return *m_message; }
    /// Held while a message is carried out; guards what clients have going on.
    [[nodiscard]] platform::CRecursiveLock& messageLock() { return m_messageLock; }
    [[nodiscard]] CParamInterfaceBaseConnector* connector() const { return m_connector; }
    /// The next field of the message in hand, if it is its last one: the number of a client that exists.
    CErrorPtr readClient(std::uint32_t& clientId);
    CErrorPtr checkClient(std::uint32_t clientId) const;
    void send(std::uint32_t clientId, const CParamInterfaceMessage& message);
    /// Drops the entries of a map by number that belong to a client.
    template <class M>
    static void eraseClient(M& map, std::uint32_t clientId)
    {
        const auto first = map.lower_bound(static_cast<std::int32_t>(clientId << 16));
        auto last = first;
        while (last != map.end() && clientId == static_cast<std::uint32_t>(last->first) >> 16)
            ++last;
        map.erase(first, last);
    }

private:
    void sendHistory(std::uint32_t clientId);
    [[nodiscard]] CAudioParamUndoEntry* undoOf(std::int32_t undoId);
    /// Whether texts or byte blocks of so many bytes may join at an element of a group.
    CErrorPtr checkItemBytes(const CAudioParam& param, std::int32_t group, std::int32_t element,
                             std::size_t bytes) const;
    void beginPlaces(CAudioParam& param, const CAudioParamUpdate& update, std::int32_t undoId);
    void closeUndo(std::int32_t undoId, const CString& label, bool isSubmitted);
    CErrorPtr findRegistry(std::int32_t listenerId, CAudioParamRegistry*& out);
    /// Reads the number of a listener and `fields`, which end the message, and finds the registry.
    template <class... F>
    CErrorPtr readRegistry(CAudioParamRegistry*& out, F&... fields);

    CParamInterfaceBaseConnector* m_connector = nullptr;
    CObjectClassInfo m_ownEvents; ///< what every object can do is not for clients

    platform::CRecursiveLock m_messageLock{4000};
    CInputStream* m_message = nullptr;
    CMap<std::int32_t, std::unique_ptr<CParamListener>> m_paramListeners;
    CMap<std::int32_t, std::unique_ptr<CRegistryListener>> m_registryListeners;
    CMap<std::int32_t, std::unique_ptr<CParamInterfaceUndoRecord>> m_undoRecords;
    std::size_t m_namedParams = 0;
};

} // namespace qrb
