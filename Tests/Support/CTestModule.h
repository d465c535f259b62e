// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCreatorTable.h"
#include "Core/CError.h"
#include "Core/CString.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qrb {

class CObject;
namespace platform {
class IFolders;
}

/// The compiled form of a document; the test fails where the text does not compile.
[[nodiscard]] std::vector<std::uint8_t> compileDocument(std::string_view xml);

/// The lines of an error, joined with newlines; empty for none. Takes the error.
[[nodiscard]] std::string errorText(CErrorPtr error);

struct CTestModuleOptions {
    std::vector<std::span<const CCreatorRow>> creators; ///< beside those of the object runtime
    platform::IFolders* folders = nullptr;
};

/// The module as a test has it: entered with a shared document given as XML, left again in the destructor, which first
/// releases the roots that were loaded. The log's lines are collected.
class CTestModule {
public:
    explicit CTestModule(std::string_view sharedXml = "<root/>", const CTestModuleOptions& options = {});
    CTestModule(std::string_view sharedXml, std::span<const CCreatorRow> creators);
    ~CTestModule();
    CTestModule(const CTestModule&) = delete;
    CTestModule& operator=(const CTestModule&) = delete;

    [[nodiscard]] CObject& shared() const;
    /// The object of that path in the shared tree; the test ends where there is none of that class.
    template <class T = CObject>
    [[nodiscard]] T& shared(const char* path) const
    {
        return dynamic_cast<T&>(find(shared(), path));
    }

    /// Makes bytes a resource until the module is left.
    void addResource(const CString& name, std::vector<std::uint8_t> bytes);
    /// A new root with a document in it; the module releases it unless that has been done with releaseRoot().
    CObject& loadRoot(std::string_view xml = "<root/>");
    /// The same for a document that may fail to load; null then, and the error's text in errorOut.
    CObject* tryLoadRoot(std::string_view xml, std::string& errorOut);
    CObject* tryLoadRoot(std::vector<std::uint8_t> document, std::string& errorOut);
    void releaseRoot(CObject& root);

    /// An object below `from`; the program ends where there is none.
    [[nodiscard]] static CObject& find(CObject& from, const char* path);

    [[nodiscard]] const std::vector<std::string>& logLines() const { return m_logLines; }
    [[nodiscard]] bool hasLogged(std::string_view line) const;

private:
    std::deque<std::vector<std::uint8_t>> m_documents; // stay where they are: the runtime uses them in place
    std::vector<CObject*> m_roots;
    std::vector<std::string> m_logLines;
    int m_nextDocument = 0;
};

} // namespace qrb
