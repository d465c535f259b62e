// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Support/CTestModule.h"

#include "Core/CApplication.h"
#include "Core/CLog.h"
#include "Core/CModule.h"
#include "Core/CObject.h"
#include "Core/CProcessState.h"
#include "Core/CResourceStore.h"
#include "Tools/DocCompiler/DocCompiler.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace qrb {

std::vector<std::uint8_t> compileDocument(std::string_view xml)
{
    qrbdoc::Result result = qrbdoc::compileText(xml);
    EXPECT_TRUE(result.ok()) << result.errorText();
    return std::move(result.bytes);
}

std::string errorText(CErrorPtr error)
{
    std::string text;
    for (std::size_t i = 0; error && i < error->lineCount(); ++i)
        text += (i > 0 ? "\n" : "") + error->line(i).toUtf8();
    return text;
}

CTestModule::CTestModule(std::string_view sharedXml, const CTestModuleOptions& options)
{
    CModuleConfig config;
    for (const auto rows : options.creators)
        config.creators.append(rows);
    m_documents.push_back(compileDocument(sharedXml));
    config.resourceBytes.emplace("SharedData.xml", m_documents.back());
    config.sharedDocument = "SharedData.xml";
    config.folders = options.folders;
    config.logSink = [this](const CString& line) { m_logLines.push_back(line.toUtf8()); };
    if (CErrorPtr error = CModule::enter(config)) {
        // Nothing can be tested without the module.
        std::fprintf(stderr, "%s\n", errorText(std::move(error)).c_str());
        std::abort();
    }
}

CTestModule::CTestModule(std::string_view sharedXml, std::span<const CCreatorRow> creators)
    : CTestModule(sharedXml, CTestModuleOptions{{creators}, nullptr})
{
}

CTestModule::~CTestModule()
{
    while (!m_roots.empty())
        releaseRoot(*m_roots.back());
    CModule::leave();
}

CObject& CTestModule::shared() const
{
    return *processState().sharedObject;
}

void CTestModule::addResource(const CString& name, std::vector<std::uint8_t> bytes)
{
    m_documents.push_back(std::move(bytes));
    processState().resources->add(name, m_documents.back());
}

CObject& CTestModule::loadRoot(std::string_view xml)
{
    std::string error;
    CObject* const root = tryLoadRoot(xml, error);
    if (root == nullptr) {
        std::fprintf(stderr, "%s\n", error.c_str());
        std::abort();
    }
    return *root;
}

CObject* CTestModule::tryLoadRoot(std::string_view xml, std::string& errorOut)
{
    return tryLoadRoot(compileDocument(xml), errorOut);
}

CObject* CTestModule::tryLoadRoot(std::vector<std::uint8_t> document, std::string& errorOut)
{
    const std::string name = "test-document-" + std::to_string(m_nextDocument++);
    addResource(name.c_str(), std::move(document));
    CObject* root = nullptr;
    errorOut = errorText(CApplication::initRootObject(root, name.c_str()));
    if (root != nullptr)
        m_roots.push_back(root);
    return root;
}

void CTestModule::releaseRoot(CObject& root)
{
    std::erase(m_roots, &root);
    root.release();
}

CObject& CTestModule::find(CObject& from, const char* path)
{
    CObject* const found = from.findObject(path);
    if (found == nullptr) {
        std::fprintf(stderr, "no object '%s' seen from '%s'\n", path, from.fullName().toUtf8().c_str());
        std::abort();
    }
    return *found;
}

bool CTestModule::hasLogged(std::string_view line) const
{
    return std::find(m_logLines.begin(), m_logLines.end(), line) != m_logLines.end();
}

} // namespace qrb
