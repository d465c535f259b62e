// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CAppDataListener.h"
#include "Core/CArray.h"
#include "Core/CString.h"
#include "Core/CUpdateListener.h"

#include <atomic>

namespace qrb {

class CAppData;
class CAudioParam;
class CAudioParamCollector;

/// Mirrors a parameter in a block of application data, so that a value set in one instance reaches all others. Both
/// sides' notifications only mark; the work is done on the thread of the instance's owner with nothing held.
class CSharedParam : public CUpdateListener {
public:
    CSharedParam(CAudioParam& param, CAppData& store, const CString& dataName);
    ~CSharedParam() override;

    [[nodiscard]] bool is(const CAudioParam& param, const CAppData& store, const CString& dataName) const;

    /// Does what was marked, and starts the link once the parameter is bound. Thread: the owner's.
    void run();
    /// The parameter changed. Thread: any.
    void onUpdate(const CUpdateInfo& info) override;

private:
    /// Hears of changes that other instances made.
    class CDataListener : public CAppDataListener<CSharedParam> {
    public:
        using CAppDataListener<CSharedParam>::CAppDataListener;
        ~CDataListener() override;
        void onUpdate(const CUpdateInfo& info) override;
    };

    void start();
    void load();
    void store();
    [[nodiscard]] CByteArray rawValue() const;
    [[nodiscard]] CString numberText() const;

    CAudioParam& m_param;
    CAppData& m_store;
    const CString m_dataName;
    CString m_defaultText;
    bool m_isStarted = false;
    std::atomic<bool> m_isLoadWanted{false};
    std::atomic<bool> m_isStoreWanted{false};
    CDataListener m_dataListener{*this};
};

} // namespace qrb
