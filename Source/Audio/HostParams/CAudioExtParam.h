// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CObject.h"
#include "Core/COwnedUpdateListener.h"
#include "Core/CString.h"

#include <cstdint>

namespace qrb {

class CAudioExtParamHostBridge;
class CAudioParam;
class CAudioParamGuard;
class CAudioParamInfo;
struct CAudioParamUpdate;

/// One row of the list of parameters that a host sees (tag audio:ext-param): an element of one group of a parameter, with
/// values from 0 to 1 through the parameter's first converter. Calls hold the instance's parameters themselves.
class CAudioExtParam : public CObject {
public:
    /// Longest name in characters; hosts with small displays show no more.
    static constexpr std::size_t kMaxNameLength = 7;

    static void declare(CObjectClassInfo& info);

    ~CAudioExtParam() override;

    CErrorPtr init() override;
    void unlink() override;

    /// Sets the place in the list, and who is told of changes from now on; null for nobody, which also takes back what
    /// waits to be told. Thread: the owner's.
    void setBridge(CAudioExtParamHostBridge* bridge, std::int32_t index);

    /// A value from the host; it does not come back to the host. Thread: any but audio.
    void setNormal(double value);
    /// The same without waiting: false if the parameters are held elsewhere just now. Thread: audio.
    [[nodiscard]] bool trySetNormal(double value);
    /// The value that the host knows. Thread: any but audio.
    [[nodiscard]] double getNormal() const;
    /// Where a reset leads; 0.5 while the parameter is unbound. Thread: any.
    [[nodiscard]] double getDefaultNormal() const;
    [[nodiscard]] CString getUnits() const;
    [[nodiscard]] const CString& getName() const { return m_name; }
    /// The parameter's text for a value, without the unit; empty while it is unbound. Thread: any.
    [[nodiscard]] CString formatNormal(double value) const;
    /// The value of a typed text; the default for a text that cannot be read. Thread: any.
    [[nodiscard]] double parseNormal(const CString& text) const;

    [[nodiscard]] CAudioParam& param() const { return *m_param; }
    [[nodiscard]] std::int32_t group() const { return m_group; }
    [[nodiscard]] std::int32_t element() const { return m_element; }
    [[nodiscard]] std::int32_t index() const { return m_index; }

private:
    class CListener : public COwnedUpdateListener<CAudioExtParam> {
    public:
        using COwnedUpdateListener::COwnedUpdateListener;
        void onUpdate(const CUpdateInfo& info) override;
    };

    void onParamUpdate(const CAudioParamUpdate& update);
    [[nodiscard]] bool isMeant(const CAudioParamUpdate& update) const;
    [[nodiscard]] double readNormal(const CAudioParamGuard& guard) const;
    [[nodiscard]] double takeNormal(const CAudioParamInfo& info, double value);

    CString m_name;
    CAudioParam* m_param = nullptr;
    std::int32_t m_group = 0;
    std::int32_t m_element = 0;
    CAudioExtParamHostBridge* m_bridge = nullptr; ///< guarded by the parameters' lock, as is the value
    std::int32_t m_index = 0;
    double m_lastNormal = 0.0;
    CListener m_listener{*this};
};

} // namespace qrb
