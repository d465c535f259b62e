// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CAttrDictionary.h"
#include "Core/CAttrTable.h"
#include "Core/CCheckedObject.h"
#include "Core/CChildNames.h"
#include "Core/CError.h"
#include "Core/CObjectAttr.h"
#include "Core/CObjectDocumentData.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"

#include <cstdint>
#include <memory>
#include <span>

namespace qrb {

class CAttrBindings;
class CDocumentCursor;
class CNotifyServer;
class CObjectClassInfo;

class CObjectEventBridge;

struct CObjectEvent;
struct CObjectTemplateRecord;

enum class ESetter { queue, now };        ///< at the end of the attribute phase, or at once
enum class EFromTemplate { no, yes };     ///< whether a tag may name a run-time template
enum class ERequireTemplate { no, yes };  ///< whether a tag must name one
enum class ERunInit { no, yes };          ///< whether a load runs init, initAttrs and initChilds
enum class EPost { whenForeign, always }; ///< whether an event is posted within its own thread, too
enum class EObjectState : std::uint8_t { created, initDone, attrsFlushed, childsReached, built };

/// Base of everything declared: named attributes, children, setters and events by class, lookup by path.
/// A tree has no lock: it belongs to the thread that built it, and every operation is for that thread unless told
/// otherwise. The shared tree is read-only once built, and any thread may read it.
/// A parent owns its children; an object is destroyed with release(), never with delete.
class CObject : public CCheckedObject {
public:
    /// Deepest nesting of objects below a root.
    static constexpr int kMaxDepth = 400;
    /// Longest full name in characters.
    static constexpr std::size_t kMaxFullNameLength = 4096;

    CObject();
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;
    /// Children are gone by now, see release().
    ~CObject() override;

    static void declare(CObjectClassInfo& info);

    /// Runs the attributes of the template and then the overrides. Classes read their attributes here; no child exists.
    [[nodiscard]] virtual CErrorPtr init();
    /// Runs the queued setters, then builds the template's children.
    [[nodiscard]] virtual CErrorPtr initAttrs();
    /// The whole subtree exists; objects elsewhere may be younger. Here an object of the shared tree becomes read-only.
    [[nodiscard]] virtual CErrorPtr initChilds();
    /// A child has been linked in, not initialised yet; an error fails its creation.
    [[nodiscard]] virtual CErrorPtr onChildAdded(CObject& child);
    /// Takes a child out of the array and the name maps without destroying it.
    virtual void removeChild(CObject& child);
    /// Removes everything that points at this object from outside: event registrations, attribute bindings.
    virtual void unlink();
    /// Asks the parent to remove this object.
    virtual void detach();
    /// An attribute to which `name` of this object is bound has changed; sets `name` and runs its setter.
    [[nodiscard]] virtual CErrorPtr onAttrChanged(CObject& source, const CString& name, const CObjectAttr& value);
    /// Handler of the event "release-child-bridged": releases the object named by the argument "sender".
    [[nodiscard]] virtual CErrorPtr releaseChildBridged(const CEventArgs& args);

    /// Sets an attribute, expanding "{...}" in the value. Nothing happens on a read-only object or for an empty name.
    [[nodiscard]] CErrorPtr setAttr(const CString& name, const CString& value, ESetter setter = ESetter::queue);
    /// The same from a value of any type; only a text is expanded.
    [[nodiscard]] CErrorPtr setAttrValue(const CString& name, const CObjectAttr& value,
                                         ESetter setter = ESetter::queue);
    /// Sets a text that does not come from a document as it stands.
    [[nodiscard]] CErrorPtr setAttrText(const CString& name, const CString& value, ESetter setter = ESetter::queue);

    [[nodiscard]] bool hasAttr(const CString& name) const { return findAttr(name) != nullptr; }
    /// The attribute of that name, or null; valid until the next change of an attribute of this object.
    [[nodiscard]] const CObjectAttr* findAttr(const CString& name) const;
    /// The value in the form asked for; `def` where the attribute is missing or does not convert.
    [[nodiscard]] CString getAttrString(const CString& name, const CString& def = {}) const;
    [[nodiscard]] bool getAttrBool(const CString& name, bool def = false) const;
    [[nodiscard]] std::int32_t getAttrInt(const CString& name, std::int32_t def = 0) const;
    [[nodiscard]] double getAttrDouble(const CString& name, double def = 0.0) const;

    /// Creates a child and links it in; the caller runs init, initAttrs and initChilds. `name` may be "base#index"; a
    /// taken index gives the next free one. On an error `out` is null and nothing of the child is left.
    [[nodiscard]] CErrorPtr createChild(CObject*& out, const CString& tag, const CString& name,
                                        EFromTemplate fromTemplate);
    /// Creates a child of class T and runs its init, initAttrs and initChilds. The tag may name a run-time template.
    /// `overrides` win over the template's attributes, `attrs` over both. On an error `out` is null and the child is
    /// gone.
    template <class T>
    [[nodiscard]] CErrorPtr createChild(T*& out, const CString& tag, const CString& name,
                                        ERequireTemplate requireTemplate, const CAttrOverrides* overrides = nullptr,
                                        const CAttrOverrides* attrs = nullptr);

    /// Whether this object, an ancestor or the shared root holds a run-time template of that name.
    [[nodiscard]] bool hasTemplate(const CString& name) const;

    /// The object at a path, or null. "shared::a.b" starts at the shared root, ".a" and "^a" at this object, others at
    /// the root; "^" climbs, "#2", "#+2" and "#-0" pick among children of one base name.
    [[nodiscard]] CObject* findObject(const CString& path);
    [[nodiscard]] const CObject* findObject(const CString& path) const;
    template <class T>
    [[nodiscard]] CErrorPtr findObjectChecked(const CString& path, T*& out);
    /// The same for the path that an attribute holds.
    template <class T>
    [[nodiscard]] CErrorPtr findObjectByAttr(const CString& attrName, T*& out);
    /// The child of a name such as "base" or "base#1", or null.
    [[nodiscard]] CObject* findChild(const CString& segment) const { return m_childNames.find(segment); }

    [[nodiscard]] std::span<CObject* const> childs() const { return {m_childs.begin(), m_childs.size()}; }
    [[nodiscard]] CObject* parent() const { return m_parent; }
    [[nodiscard]] CObject& root() const { return *m_root; }
    [[nodiscard]] const CString& tag() const { return m_tag; }
    /// The part of the full name behind the last ".".
    [[nodiscard]] CString getName() const;
    /// Identity of the object in messages and events. Thread: any.
    [[nodiscard]] const CString& fullName() const;
    [[nodiscard]] EObjectState state() const { return m_state; }
    [[nodiscard]] bool isReadOnly() const { return m_isReadOnly; }
    /// Whether this object only stands for another one, at the path in its attribute "target".
    [[nodiscard]] bool isShortcut() const { return m_isShortcutChild; }
    /// Whether this object is a stored template: a name with a sealed payload.
    [[nodiscard]] bool isTemplate() const { return m_templateRecord != nullptr; }
    /// Number drawn from the tree's notify server; -1 in a tree without one. Thread: any.
    [[nodiscard]] std::int32_t objectId() const { return m_objectId; }
    [[nodiscard]] CNotifyServer* notifyServer() const { return m_notifyServer; }

    /// Destroys the object with everything below it, the last child first.
    void release();
    /// Has the thread that owns this object release it. Thread: any; the object stays valid until its thread gets to it.
    [[nodiscard]] CErrorPtr releaseBridged();

    /// Loads a compiled document, a resource or a file of that name, into this object.
    [[nodiscard]] CErrorPtr loadXMLData(const CString& name, ERunInit runInit);

    /// Runs the handler of an event of this object's class.
    [[nodiscard]] CErrorPtr runEvent(const CString& name);
    [[nodiscard]] CErrorPtr runEvent(const CString& name, const CEventArgs& args);
    /// Makes `handlerName` of this object run when `sender` raises `eventName`. A later call for the same sender and
    /// event replaces the handler.
    void listenObject(CObject& sender, const CString& eventName, const CString& handlerName);
    void unlistenObject(CObject& sender, const CString& eventName);
    /// Sends an event to all who listen to this object; nothing happens in a tree without notify server.
    [[nodiscard]] CErrorPtr raiseEvent(const CString& eventName, const CEventArgs& args = {},
                                       EPost post = EPost::whenForeign);

    /// Makes the calling thread the owner of this object and of what is below it; events from other threads are posted
    /// to the bridge, which the caller keeps alive as long as the object.
    void setEventBridge(CObjectEventBridge* bridge);
    /// The nearest object, this one included, that has a thread of its own, or null. Thread: any.
    [[nodiscard]] const CObject* threadOwner() const;
    [[nodiscard]] CObjectEventBridge* eventBridge() const { return m_eventBridge; }
    [[nodiscard]] std::uint64_t ownerThread() const { return m_ownerThread; }

private:
    friend class CApplication;
    friend class CAttrExpansion;
    friend class CAttrBindings;

    enum class ENodePart { all, attrs, childs };

    CErrorPtr createFromTag(CObject*& out, const CString& tag, const CString& name, ERequireTemplate requireTemplate);
    CErrorPtr finishChild(CObject& child, const CAttrOverrides* overrides, const CAttrOverrides* attrs);
    CErrorPtr wrongClass(CObject& child, const CString& tag, const CString& name);
    CErrorPtr linkChild(CObject& child, const CString& tag, const CString& name);
    CErrorPtr findFailed(const CString& path, bool isFound) const;
    CErrorPtr findByAttrFailed(const CString& attrName, const CString& path, const CObject* found) const;
    const CObject* findTemplate(const CString& name) const;

    CErrorPtr loadNode(CDocumentCursor& cursor, ERunInit runInit, ENodePart part);
    CErrorPtr loadAttrs(CDocumentCursor& cursor, bool isSkipped);
    CErrorPtr expandFromDocument(CDocumentCursor& cursor, const CTextRecord& name, std::size_t valueIndex,
                                 CTextRef& text);
    CErrorPtr loadChilds(CDocumentCursor& cursor);
    CErrorPtr loadTemplateRecord(CDocumentCursor& cursor);
    CErrorPtr damagedDocument() const;
    CErrorPtr loadTemplatePart(ENodePart part);
    CErrorPtr loadDocument(const CString& name, ERunInit runInit);
    void holdDocument(const CObjectDocumentData& document);

    void setFullName(CString&& name);
    void setRoot(std::shared_ptr<CNotifyServer> server);
    void applyClassDefaults();
    void makeReadOnly();

    CErrorPtr storeText(std::size_t index, CTextRef&& value, ESetter setter);
    CErrorPtr storeValue(std::size_t index, CObjectAttr&& value, ESetter setter);
    [[nodiscard]] CAttrSetter findSetter(std::uint32_t hash, const CString& name) const;
    void queueSetter(std::size_t index);
    CErrorPtr runSetter(std::size_t index);
    CErrorPtr flushSetters();
    CErrorPtr applyAttrs(const CAttrOverrides* attrs);
    [[nodiscard]] std::size_t findOrAddAttr(const CString& name);
    [[nodiscard]] std::size_t addAttr(std::uint32_t hash, CTextRef&& name);
    CErrorPtr notifyBound(std::size_t index);
    CAttrBindings& bindings();

    const CObjectClassInfo* m_classInfo = nullptr;
    CAttrTable m_attrs;
    CArray<std::uint32_t, 0> m_pendingSetters; ///< indices into m_attrs, in the order queued
    CArray<CObject*> m_childs;                 ///< in the order of creation; owned
    CChildNames m_childNames;
    CObject* m_parent = nullptr;
    CObject* m_root = this;
    CNotifyServer* m_notifyServer = nullptr;          ///< the tree's
    std::shared_ptr<CNotifyServer> m_ownNotifyServer; ///< of a root
    CObjectEventBridge* m_eventBridge = nullptr;
    std::uint64_t m_ownerThread = 0; ///< valid where m_inheritsBridge is off
    std::int32_t m_objectId = -1;
    std::int32_t m_depth = 0;
    EObjectState m_state = EObjectState::created;
    bool m_isReadOnly = false;
    bool m_isShortcutChild = false;
    bool m_inheritsBridge = true;
    CString m_tag;
    CTextRef m_fullName;
    const CAttrOverrides* m_overrides = nullptr;   ///< set during the child's init
    const CAttrOverrides* m_callerAttrs = nullptr; ///< likewise; win over everything else
    const CObject* m_template = nullptr;           ///< the stored template this object is made from
    std::unique_ptr<CObjectTemplateRecord> m_templateRecord;
    std::unique_ptr<CAttrBindings> m_bindings;  ///< in both directions; null while there is none
    CMap<CString, CObject*> m_templates;        ///< stored templates among the children
    CArray<std::uint32_t, 0> m_listenedServers; ///< numbers of the notify servers that know this object as a listener
    CArray<CDocumentRef, 1> m_documents;        ///< held: texts of m_attrs are borrowed from them
};

template <class T>
CErrorPtr CObject::createChild(T*& out, const CString& tag, const CString& name, ERequireTemplate requireTemplate,
                               const CAttrOverrides* overrides, const CAttrOverrides* attrs)
{
    out = nullptr;
    CObject* child = nullptr;
    QRB_TRY(createFromTag(child, tag, name, requireTemplate));
    T* const typed = dynamic_cast<T*>(child);
    if (typed == nullptr)
        return wrongClass(*child, tag, name);
    QRB_TRY(finishChild(*child, overrides, attrs));
    out = typed;
    return {};
}

template <class T>
CErrorPtr CObject::findObjectChecked(const CString& path, T*& out)
{
    CObject* const found = findObject(path);
    out = dynamic_cast<T*>(found);
    return out != nullptr ? CErrorPtr{} : findFailed(path, found != nullptr);
}

template <class T>
CErrorPtr CObject::findObjectByAttr(const CString& attrName, T*& out)
{
    const CString path = getAttrString(attrName);
    CObject* const found = findObject(path);
    out = dynamic_cast<T*>(found);
    return out != nullptr ? CErrorPtr{} : findByAttrFailed(attrName, path, found);
}

} // namespace qrb
