// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CString.h"

#include <base/source/fobject.h>
#include <pluginterfaces/base/ipluginbase.h>

namespace qrb {

/// Sixteen bytes from text of the form 8-4-4-4-12 hexadecimal digits, the first three groups little endian. Other text
/// gives zeros.
void parseClassId(const CString& text, Steinberg::TUID out);

/// Gives the host the one class of this module, as the product's project object declares it. Thread: the host's main.
class CPluginFactoryVST3 final : public Steinberg::FObject, public Steinberg::IPluginFactory3 {
public:
    /// The one object of the module with a reference more; null while the module is not entered.
    static Steinberg::IPluginFactory* get();

    CPluginFactoryVST3();
    ~CPluginFactoryVST3() override;

    Steinberg::tresult PLUGIN_API getFactoryInfo(Steinberg::PFactoryInfo* info) override;
    Steinberg::int32 PLUGIN_API countClasses() override;
    Steinberg::tresult PLUGIN_API getClassInfo(Steinberg::int32 index, Steinberg::PClassInfo* info) override;
    Steinberg::tresult PLUGIN_API createInstance(Steinberg::FIDString classId, Steinberg::FIDString interfaceId,
                                                 void** out) override;
    Steinberg::tresult PLUGIN_API getClassInfo2(Steinberg::int32 index, Steinberg::PClassInfo2* info) override;
    Steinberg::tresult PLUGIN_API getClassInfoUnicode(Steinberg::int32 index, Steinberg::PClassInfoW* info) override;
    Steinberg::tresult PLUGIN_API setHostContext(Steinberg::FUnknown* context) override;

    DEFINE_INTERFACES
    DEF_INTERFACE(Steinberg::IPluginFactory)
    DEF_INTERFACE(Steinberg::IPluginFactory2)
    DEF_INTERFACE(Steinberg::IPluginFactory3)
    END_DEFINE_INTERFACES(FObject)
    REFCOUNT_METHODS(FObject)

private:
    Steinberg::PFactoryInfo m_info;
    Steinberg::PClassInfo2 m_classInfo;
    Steinberg::IPtr<Steinberg::FUnknown> m_hostContext;
};

} // namespace qrb
