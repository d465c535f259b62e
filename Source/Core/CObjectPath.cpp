// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CObjectPath.h"

#include "Core/CObject.h"
#include "Core/CProcessState.h"

namespace qrb {

namespace {

constexpr int kMaxShortcuts = 32; // shortcuts may lead in a ring
const char* const kSharedPrefix = "shared::";
constexpr std::size_t kSharedPrefixLength = 8;

/// Walks a path; `m_reached` stays at the last object that existed.
class CPathWalk {
public:
    CObject* walk(CObject& start, const CString& path, int shortcuts = 0);
    [[nodiscard]] const CObject* reached() const { return m_reached; }

private:
    CObject* walkFrom(CObject& from, const CString& path, std::size_t pos, int shortcuts);

    CObject* m_reached = nullptr;
};

CObject* CPathWalk::walk(CObject& start, const CString& path, int shortcuts)
{
    if (path.empty())
        return nullptr;
    if (path.at(0) == u'.' || path.at(0) == u'^')
        return walkFrom(start, path, 0, shortcuts);
    if (path.startsWith(kSharedPrefix)) {
        CObject* const shared = processState().sharedObject;
        return shared != nullptr ? walkFrom(*shared, path, kSharedPrefixLength, shortcuts) : nullptr;
    }
    return walkFrom(start.root(), path, 0, shortcuts);
}

CObject* CPathWalk::walkFrom(CObject& from, const CString& path, std::size_t pos, int shortcuts)
{
    CObject* current = &from;
    std::size_t segment = pos; // start of the segment being collected
    for (;; ++pos) {
        m_reached = current;
        const bool isEnd = pos == path.length();
        const char16_t unit = path.at(pos);
        if (isEnd || unit == u'.') {
            if (pos > segment) {
                CObject* const child = current->findChild(path.substr(segment, pos - segment));
                if (child == nullptr)
                    return nullptr;
                current = child;
                m_reached = current;
                if (child->isShortcut() && shortcuts < kMaxShortcuts)
                    return walk(*child, child->getAttrString("target") + path.substr(pos), shortcuts + 1);
            }
            if (isEnd)
                return current;
            segment = pos + 1;
        } else if (unit == u'/') {
            current = &current->root();
            segment = pos + 1;
        } else if (unit == u'^') {
            current = current->parent();
            if (current == nullptr)
                return nullptr;
            segment = pos + 1;
        }
    }
}

} // namespace

CObject* findObject(CObject& start, const CString& path)
{
    return CPathWalk().walk(start, path);
}

CString resolvedPath(CObject& start, const CString& path)
{
    CPathWalk walk;
    static_cast<void>(walk.walk(start, path));
    return walk.reached() != nullptr ? walk.reached()->fullName() : CString();
}

} // namespace qrb
