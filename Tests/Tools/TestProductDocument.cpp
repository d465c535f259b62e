// SPDX-License-Identifier: GPL-3.0-or-later
// The product's document against itself: names in it that lead nowhere make no error at run time, only silence.
#include "Audio/AudioCreators.h"
#include "Core/CApplication.h"
#include "Core/CModule.h"
#include "Core/CObject.h"
#include "Core/CProcessState.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <productResources.h>
#include <set>
#include <sstream>
#include <string>
#include <typeinfo>

namespace {

using qrb::CObject;

/// Text in front of the last ".", empty at the top.
std::string parentPath(const std::string& path)
{
    return path.substr(0, path.rfind('.') == std::string::npos ? 0 : path.rfind('.'));
}

/// Full path of a parameter named relative to a process.
std::string resolved(std::string process, std::string path)
{
    if (path.starts_with('/'))
        return "audio" + path.substr(path.find('.'));
    for (; path.starts_with('^'); path.erase(0, 1))
        process = parentPath(process);
    return process + "." + path.substr(path.starts_with('.') ? 1 : 0);
}

/// Name of an object below its parent once the graph runs: what stands in a set of bands is in each band's body or is one
/// of its filters, and a switch has one of its children at a time.
std::string runName(const CObject& object)
{
    const CObject& parent = *object.parent();
    const std::string name = object.getName().toUtf8();
    if (parent.tag() == "audio:modProcessSwitch" && object.tag().toUtf8().starts_with("audio:mod"))
        return parent.getAttrString("def-child-name").toUtf8();
    if (!parent.getAttrBool("is-multiband"))
        return name;
    for (const char* filter : {"lp", "hp", "pre"})
        if (parent.getAttrString(("multiband-" + std::string(filter)).c_str()).toUtf8() == "." + name)
            return filter;
    return "mod." + name;
}

/// Full name of an object once the graph runs.
std::string runPath(const CObject& object)
{
    if (object.parent() == nullptr || object.parent()->parent() == nullptr)
        return object.fullName().toUtf8();
    return runPath(*object.parent()) + "." + runName(object);
}

/// The process that something declared in it belongs to.
std::string processOf(const CObject& object)
{
    return parentPath(runPath(object));
}

class ProductDocument : public testing::Test {
protected:
    void SetUp() override
    {
        qrb::CModuleConfig config;
        config.creators.append(qrb::audioCreators());
        config.resources.append(qrb::productResources());
        config.sharedDocument = "SharedData.xml";
        const qrb::CErrorPtr error = qrb::CModule::enter(config);
        ASSERT_FALSE(error) << error->text().toUtf8();
        m_shared = qrb::processState().sharedObject;
        visit(*m_shared, [this](const CObject& object) {
            if (object.tag() == "audio:param-remap")
                readRemap(object);
            if (object.tag() == "audio:param") {
                m_params.insert(runPath(object));
                m_params.insert(object.fullName().toUtf8()); // of the set of bands itself
            }
            if (object.tag() == "audio:modMeter" || object.tag() == "audio:modSpectrum")
                m_params.insert(runPath(object) + "-enable"); // bound when somebody listens
        });
    }

    void TearDown() override
    {
        if (m_shared != nullptr)
            qrb::CModule::leave();
    }

    static void visit(const CObject& object, const std::function<void(const CObject&)>& visitor)
    {
        visitor(object);
        for (const CObject* child : object.childs())
            visit(*child, visitor);
    }

    static std::string attr(const CObject& object, const char* name) { return object.getAttrString(name).toUtf8(); }

    /// Whether the parameter exists once all renames are followed.
    [[nodiscard]] bool hasParam(std::string path) const
    {
        for (auto rename = m_renames.find(path); rename != m_renames.end(); rename = m_renames.find(path))
            path = rename->second;
        return m_params.contains(path);
    }

    /// The children of the process that contains `object`, by name.
    static std::set<std::string> siblings(const CObject& object)
    {
        std::set<std::string> out = {"*"};
        for (const CObject* sibling : object.parent()->childs())
            out.insert(sibling->getName().toUtf8());
        return out;
    }

    CObject* m_shared = nullptr;
    std::map<std::string, std::string> m_renames;
    std::set<std::string> m_params;

private:
    void readRemap(const CObject& remap)
    {
        const std::string process = runPath(*remap.parent());
        if (remap.hasAttr("orig"))
            m_renames[resolved(process, attr(remap, "orig"))] = resolved(process, attr(remap, "new"));
        const CObject* content = remap.findChild("content");
        std::istringstream items(content != nullptr ? attr(*content, "value") : std::string());
        for (std::string item; std::getline(items, item, ';');) {
            std::erase_if(item, [](char c) { return c == ' ' || c == '\n'; });
            if (item.empty())
                continue;
            ASSERT_NE(item.find('='), std::string::npos) << item;
            m_renames[resolved(process, item.substr(0, item.find('=')))] =
                resolved(process, item.substr(item.find('=') + 1));
        }
    }
};

TEST_F(ProductDocument, everyTagHasItsClass)
{
    int objects = 0;
    visit(*m_shared, [&](const CObject& object) {
        ++objects;
        const std::string tag = object.tag().toUtf8();
        const bool isPlain = tag.find(':') == std::string::npos || tag == "core:object";
        EXPECT_TRUE(isPlain || typeid(object) != typeid(CObject)) << tag << " " << object.fullName().toUtf8();
    });
    EXPECT_GT(objects, 60);
}

TEST_F(ProductDocument, everyParameterThatANodeOrStateReadsIsDeclared)
{
    const std::map<std::string, const char*> readers = {{"audio:param-alloc", "param-name"},
                                                        {"audio:process-bypass-state", "param"},
                                                        {"audio:param-shared-storage", "param"}};
    visit(*m_shared, [&](const CObject& object) {
        const std::string name = object.fullName().toUtf8();
        if (const auto reader = readers.find(object.tag().toUtf8()); reader != readers.end()) {
            EXPECT_TRUE(hasParam(resolved(processOf(object), attr(object, reader->second)))) << name;
        }
        for (const char* own : {"stack-param", "multiband-freq-param", "multiband-count-param"}) {
            EXPECT_TRUE(attr(object, own).empty() || hasParam(resolved(runPath(object), attr(object, own))))
                << name << " " << own;
        }
        for (const char* list : {"src", "dst"}) {
            std::istringstream paths(object.tag().toUtf8().starts_with("audio:param-filter") ? attr(object, list) : "");
            for (std::string path; std::getline(paths, path, ',');)
                EXPECT_TRUE(hasParam(resolved(processOf(object), path))) << name << " " << path;
        }
    });
    for (const auto& [original, target] : m_renames) {
        EXPECT_TRUE(hasParam(target)) << original;
    }
}

TEST_F(ProductDocument, linksAndStatesNameWhatStandsBesideThem)
{
    visit(*m_shared, [&](const CObject& object) {
        if (object.tag() == "audio:process-link") {
            for (const char* end : {"src", "dst"}) {
                const std::string name = attr(object, end);
                EXPECT_TRUE(siblings(object).contains(name.substr(0, name.find('/')))) << name;
            }
        }
        std::istringstream ids(attr(object, "bypass-state-id"));
        for (std::string id; ids >> id;)
            EXPECT_TRUE(id == "-1" || siblings(object).contains("state" + id)) << object.fullName().toUtf8();
    });
}

TEST_F(ProductDocument, whatIsReferredToAcrossTheTreeIsThere)
{
    EXPECT_EQ(attr(*m_shared->findObject("audio.modMain.modLatencyUniformer"), "latencies").substr(0, 10),
              "44100=723;");
    EXPECT_NE(m_shared->findObject("audio.modOutput"), nullptr);
    CObject* root = nullptr;
    const qrb::CErrorPtr error = qrb::CApplication::initRootObject(root, "");
    ASSERT_FALSE(error);
    EXPECT_TRUE(root->hasTemplate(m_shared->findObject("audio")->getAttrString("plugin-tag")));
    root->release();
}

} // namespace
