// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CSystem.h"

#include "Core/CPathText.h"
#include "Platform/Files.h"
#include "Platform/Folders.h"

namespace qrb {

bool CSystem::fileExists(const CString& path)
{
    return platform::fileExists(pathToBytes(path));
}

bool CSystem::wildcardMatch(const CString& text, const CString& pattern) noexcept
{
    // Only the last "*" ever needs another try: what the ones before it took can stay as short as it was.
    std::size_t inText = 0;
    std::size_t inPattern = 0;
    std::size_t behindStar = CString::npos;
    std::size_t starText = 0;
    while (inText < text.length()) {
        const char16_t wanted = pattern.at(inPattern);
        if (inPattern < pattern.length() && wanted == u'*') {
            behindStar = ++inPattern;
            starText = inText;
        } else if (inPattern < pattern.length() && (wanted == u'?' || wanted == text.at(inText))) {
            ++inPattern;
            ++inText;
        } else if (behindStar != CString::npos) {
            inPattern = behindStar;
            inText = ++starText;
        } else {
            return false;
        }
    }
    while (inPattern < pattern.length() && pattern.at(inPattern) == u'*') {
        ++inPattern;
    }
    return inPattern == pattern.length();
}

CString CSystem::getModuleFolder()
{
    return pathFromBytes(platform::CSystemFolders().modulePath());
}

} // namespace qrb
