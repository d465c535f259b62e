// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/VST/CPluginFactoryVST3.h"

#include "Audio/VST/CAudioWrapperVST3.h"
#include "Audio/VST/VstText.h"
#include "Core/CObject.h"
#include "Core/CProcessState.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace qrb {

using namespace Steinberg; // NOLINT(google-build-using-namespace)

namespace {

CPluginFactoryVST3* theFactory = nullptr; // owned by the host's references

template <std::size_t kSize>
void copyBytes(const std::string& text, char8 (&out)[kSize])
{
    const std::size_t count = std::min(text.size(), kSize - 1);
    std::memcpy(out, text.data(), count);
    out[count] = 0;
}

int hexDigit(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    const int lower = c | 0x20;
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace

void parseClassId(const CString& text, TUID out)
{
    // Where in the text the pair of digits of each byte stands.
    constexpr std::size_t kPlaces[sizeof(TUID)] = {6, 4, 2, 0, 11, 9, 16, 14, 19, 21, 24, 26, 28, 30, 32, 34};
    std::memset(out, 0, sizeof(TUID));
    bool isValid = text.length() >= 36;
    for (const std::size_t dash : {8U, 13U, 18U, 23U})
        isValid = isValid && text.at(dash) == u'-';
    TUID id{};
    for (std::size_t i = 0; isValid && i < sizeof(TUID); ++i) {
        const int high = hexDigit(text.at(kPlaces[i]));
        const int low = hexDigit(text.at(kPlaces[i] + 1));
        isValid = high >= 0 && low >= 0;
        id[i] = static_cast<char>(high * 16 + low);
    }
    if (isValid)
        std::memcpy(out, id, sizeof(TUID));
}

IPluginFactory* CPluginFactoryVST3::get()
{
    if (theFactory != nullptr)
        theFactory->addRef();
    else if (processStateOrNull() != nullptr)
        theFactory = new CPluginFactoryVST3;
    return theFactory;
}

CPluginFactoryVST3::CPluginFactoryVST3()
{
    const CObject* const shared = processState().sharedObject;
    const CObject* const project = shared != nullptr ? shared->findObject("project") : nullptr;
    const auto attr = [&](const char* name) {
        return project != nullptr ? project->getAttrString(name).toUtf8() : std::string();
    };
    copyBytes(attr("app-vendor"), m_info.vendor);
    copyBytes(attr("app-vendor-url"), m_info.url);
    copyBytes(attr("app-vendor-email"), m_info.email);
    m_info.flags = PFactoryInfo::kUnicode;
    if (project != nullptr)
        parseClassId(project->getAttrString("plugin-uuid"), m_classInfo.cid);
    m_classInfo.cardinality = PClassInfo::kManyInstances;
    copyBytes(kVstAudioEffectClass, m_classInfo.category);
    copyBytes(attr("app-name"), m_classInfo.name);
    copyBytes(attr("plugin-category-vst3"), m_classInfo.subCategories);
    copyBytes(attr("app-vendor"), m_classInfo.vendor);
    copyBytes(attr("app-version"), m_classInfo.version);
    copyBytes("VST 3.5.1", m_classInfo.sdkVersion);
}

CPluginFactoryVST3::~CPluginFactoryVST3()
{
    theFactory = nullptr;
}

tresult PLUGIN_API CPluginFactoryVST3::getFactoryInfo(PFactoryInfo* info)
{
    if (info == nullptr)
        return kInvalidArgument;
    *info = m_info;
    return kResultOk;
}

int32 PLUGIN_API CPluginFactoryVST3::countClasses()
{
    return 1;
}

tresult PLUGIN_API CPluginFactoryVST3::getClassInfo(int32 index, PClassInfo* info)
{
    if (index != 0 || info == nullptr)
        return kInvalidArgument;
    *info = PClassInfo(m_classInfo.cid, m_classInfo.cardinality, m_classInfo.category, m_classInfo.name);
    return kResultOk;
}

tresult PLUGIN_API CPluginFactoryVST3::getClassInfo2(int32 index, PClassInfo2* info)
{
    if (index != 0 || info == nullptr)
        return kInvalidArgument;
    *info = m_classInfo;
    return kResultOk;
}

tresult PLUGIN_API CPluginFactoryVST3::getClassInfoUnicode(int32 index, PClassInfoW* info)
{
    if (index != 0 || info == nullptr)
        return kInvalidArgument;
    info->fromAscii(m_classInfo);
    return kResultOk;
}

tresult PLUGIN_API CPluginFactoryVST3::setHostContext(FUnknown* context)
{
    m_hostContext = context;
    return kResultOk;
}

tresult PLUGIN_API CPluginFactoryVST3::createInstance(FIDString classId, FIDString interfaceId, void** out)
{
    if (out == nullptr)
        return kInvalidArgument;
    *out = nullptr;
    if (classId == nullptr || interfaceId == nullptr || std::memcmp(classId, m_classInfo.cid, sizeof(TUID)) != 0)
        return kNoInterface;
    const CModuleHold module;
    if (!module.isHeld())
        return kNotInitialized; // the host has left the module, with this factory in its hand
    const IPtr<CAudioWrapperVST3> wrapper = owned(new CAudioWrapperVST3(m_hostContext));
    TUID wanted;
    std::memcpy(wanted, interfaceId, sizeof(TUID));
    return wrapper->queryInterface(wanted, out) == kResultOk ? kResultOk : kNoInterface;
}

} // namespace qrb
