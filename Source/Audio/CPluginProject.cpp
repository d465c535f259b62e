// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CPluginProject.h"

#include "Core/CNumberText.h"
#include "Core/CObject.h"
#include "Core/CTextSplit.h"

#include <algorithm>

namespace qrb {

namespace {

constexpr std::size_t kCodeLength = 4;
constexpr std::size_t kMinVersionParts = 2;

bool parseVersionPart(const CString& text, int& number)
{
    for (std::size_t i = 0; i < text.length(); ++i)
        if (text.at(i) < u'0' || text.at(i) > u'9')
            return false;
    std::int32_t value = 0;
    if (!parseInteger(text, value))
        return false;
    number = value;
    return true;
}

} // namespace

CErrorPtr CPluginProject::read(const CObject& project)
{
    name = project.getAttrString("app-name");
    if (name.empty())
        return QRB_ERROR("@qrbstr_CAudioWrapper_init_PluginNameEmpty Plug-in name is empty.");
    vendor = project.getAttrString("app-vendor");
    if (vendor.empty())
        return QRB_ERROR("@qrbstr_CAudioWrapper_init_VendorNameEmpty Vendor name is empty.");
    internalChannelCount = project.getAttrInt("plugin-intchannel-count");
    if (internalChannelCount < 1 || internalChannelCount > kMaxInternalChannels)
        return QRB_ERROR("@qrbstr_CAudioWrapper_init_InvalidIntChannelCount "
                         "Invalid 'plugin-intchannel-count' attribute value.");
    groupCount = project.getAttrInt("plugin-group-count");
    if (groupCount < 1 || groupCount > kMaxGroups)
        return QRB_ERROR("@qrbstr_CAudioWrapper_init_InvalidGroupCount Invalid 'plugin-group-count' attribute value.");
    QRB_TRY(parseCode(project.getAttrString("plugin-code")));
    QRB_TRY(parseVersion(project.getAttrString("app-version")));
    parseTail(project.getAttrString("plugin-tail"));
    autoOversamplingMode = project.getAttrInt("auto-oversampling-rtmode");
    useHostBPM = project.getAttrBool("use-host-bpm");
    useHostRecording = project.getAttrBool("use-host-recording");
    useSidechain = project.getAttrBool("use-sidechain");
    useRouting = project.getAttrBool("use-routing");
    useMidSide = project.getAttrBool("use-mid-side");
    useWindowResizing = project.getAttrBool("use-window-resizing");
    isSymmetricIO = project.getAttrBool("is-symmetric-io");
    minWindowWidth = project.getAttrInt("min-window-width");
    minWindowHeight = project.getAttrInt("min-window-height");
    isVizAlwaysActive = project.getAttrBool("is-viz-always-active");
    return nullptr;
}

CErrorPtr CPluginProject::parseVersion(const CString& text)
{
    const CArray<CString> parts = split(text, u'.', EEmpty::keep);
    version = {};
    bool isValid = parts.size() >= kMinVersionParts && parts.size() <= version.size();
    for (std::size_t i = 0; isValid && i < parts.size(); ++i)
        isValid = parseVersionPart(parts[i], version[i]);
    if (!isValid)
        return QRB_ERROR("@qrbstr_CAudioWrapper_parseVersion_InvalidVersion "
                         "Invalid version specification in string '%1'.",
                         text);
    return nullptr;
}

CErrorPtr CPluginProject::parseCode(const CString& text)
{
    if (text.length() != kCodeLength || text.isWide())
        return QRB_ERROR("@qrbstr_CAudioWrapper_acquirePluginCode_PluginCodeError "
                         "Invalid plug-in code in string '%1'.",
                         text);
    code = 0;
    for (std::size_t i = 0; i < kCodeLength; ++i)
        code = code << 8 | text.at(i);
    return nullptr;
}

void CPluginProject::parseTail(const CString& text)
{
    tailSeconds.reset();
    if (text.empty())
        return;
    double seconds = 0.0;
    const bool isNumber = parseNumber(text, seconds) && seconds >= 0.0;
    tailSeconds = isNumber ? seconds : kFallbackTailSeconds;
}

} // namespace qrb
