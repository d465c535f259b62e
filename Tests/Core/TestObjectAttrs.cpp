// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CObject.h"
#include "Core/CObjectClassInfo.h"
#include "Tests/Support/CTestModule.h"

#include <gtest/gtest.h>

namespace qrb {

namespace {

/// Records its setters and may set a further attribute from one.
class CRecorder : public CObject {
public:
    static void declare(CObjectClassInfo& info)
    {
        CObject::declare(info);
        info.attr<&CRecorder::setFirst>("first");
        info.attr<&CRecorder::setSecond>("second");
        info.attr<&CRecorder::setBad>("bad");
        info.attr<&CRecorder::setLimited>("limited");
        info.def("is-on", "true");
        info.def("second", "from-class");
    }

    CErrorPtr setFirst(const CObjectAttr& value)
    {
        for (int i = 0; i < 40; ++i) // enough to move all attributes
            QRB_TRY(setAttr(CString("extra-") + formatIndex(i), "x"));
        calls += "first=" + value.toString() + ";";
        return {};
    }
    CErrorPtr setSecond(const CObjectAttr& value)
    {
        calls += "second=" + value.toString() + ";";
        return {};
    }
    CErrorPtr setBad(const CObjectAttr&) { return QRB_ERROR("@qrbstr_CRecorder_setBad Refused."); }
    /// Holds the attribute that it follows at 5 at most.
    CErrorPtr setLimited(const CObjectAttr& value)
    {
        CObject* const source = findObject("s");
        return source != nullptr && value.toInt() > 5 ? source->setAttr("v", "5") : nullptr;
    }
    [[nodiscard]] CErrorPtr init() override
    {
        QRB_TRY(CObject::init());
        calls += "init;";
        return {};
    }

    CString calls;

private:
    static CString formatIndex(int index) { return CString(std::to_string(index)); }
};

constexpr CCreatorRow kRows[] = {creatorRow<CRecorder>("test:recorder")};

std::string attr(CObject& from, const char* path, const char* name)
{
    return CTestModule::find(from, path).getAttrString(name, "<none>").toUtf8();
}

} // namespace

TEST(CObjectAttr, ConvertsByType)
{
    EXPECT_EQ(CObjectAttr(0.30004).toString(), "0.3000");
    EXPECT_EQ(CObjectAttr(-2.5).toInt(), -3);
    EXPECT_EQ(CObjectAttr(1.0).toBool(true), true); // a number is no boolean, so the default counts
    EXPECT_EQ(CObjectAttr(1.0).toBool(false), false);
    EXPECT_EQ(CObjectAttr(std::int32_t{-7}).toString(), "-7");
    EXPECT_EQ(CObjectAttr(true).toString(), "true");
    EXPECT_EQ(CObjectAttr(true).toDouble(0.25), 0.25);
    EXPECT_EQ(CObjectAttr("$1F").toInt(), 31);
    EXPECT_EQ(CObjectAttr("12x").toInt(5), 5);
    EXPECT_EQ(CObjectAttr("1.5").toDouble(), 1.5);
    EXPECT_EQ(CObjectAttr("1.5").toInt(9), 9);
    EXPECT_EQ(CObjectAttr("yes").toBool(true), true);
    EXPECT_EQ(CObjectAttr("0").toBool(true), false);
    EXPECT_EQ(CObjectAttr().toString("d"), "d");
    EXPECT_EQ(CObjectAttr::none().toInt(3), 3);
}

TEST(CObjectAttr, OffInADocumentIsAbsentUnlessItSwitchesSomethingOff)
{
    CTestModule module("<root/>", kRows);
    CObject& root = module.loadRoot(R"(<root><a name="a" x="false" y="" z="{?false}"/>
        <test:recorder name="r" is-on="false"/><test:recorder name="s"/></root>)");
    EXPECT_FALSE(CTestModule::find(root, "a").hasAttr("x"));
    EXPECT_FALSE(CTestModule::find(root, "a").hasAttr("y"));
    EXPECT_EQ(attr(root, "a", "z"), "false");
    EXPECT_FALSE(CTestModule::find(root, "r").getAttrBool("is-on", true));
    EXPECT_TRUE(CTestModule::find(root, "s").getAttrBool("is-on"));
}

TEST(CObjectAttr, ExpressionsInherit)
{
    CTestModule module(R"(<root><project name="project" app-name="Thump"/></root>)");
    CObject& root = module.loadRoot(R"(<root palette="dark" n="b">
        <p name="Panel" title="T" palette="{?light}" two-b="inner" self="{full-name}">
          <c name="c" up="{/^ title?Untitled}" same="{/^?none}" alone="{@title?no}" shared="{/shared::project app-name}"
             nest="x{two-{n}}y" missing="{nothing?d}" empty="{nothing}" open="a{b" close="a}b" late="{title}{" tail="{title}{palette}"
             climb="{/^^^ title?beyond}" palette-is="{palette}"/>
        </p></root>)");
    EXPECT_EQ(attr(root, "Panel", "palette"), "dark");
    EXPECT_EQ(attr(root, "Panel", "self"), "Panel");
    EXPECT_EQ(attr(root, "Panel.c", "up"), "T");
    EXPECT_EQ(attr(root, "Panel.c", "same"), "none");
    EXPECT_EQ(attr(root, "Panel.c", "alone"), "no");
    EXPECT_EQ(attr(root, "Panel.c", "shared"), "Thump");
    EXPECT_EQ(attr(root, "Panel.c", "nest"), "xinnery");
    EXPECT_EQ(attr(root, "Panel.c", "missing"), "d");
    EXPECT_EQ(attr(root, "Panel.c", "empty"), "");
    EXPECT_EQ(attr(root, "Panel.c", "open"), "a{b");
    EXPECT_EQ(attr(root, "Panel.c", "close"), "a}b");
    EXPECT_EQ(attr(root, "Panel.c", "late"), "{title}{"); // nothing follows the last brace: the text stays as it is
    EXPECT_EQ(attr(root, "Panel.c", "tail"), "Tdark");
    EXPECT_EQ(attr(root, "Panel.c", "climb"), "beyond");
    EXPECT_EQ(attr(root, "Panel.c", "palette-is"), "dark");
}

TEST(CObjectAttr, ExpansionThatDoesNotEndIsAnError)
{
    CTestModule module;
    CObject& root = module.loadRoot();
    EXPECT_FALSE(root.setAttrText("loop", "{loop}"));
    EXPECT_EQ(root.getAttrString("loop"), "{loop}"); // not from a document: just text
    EXPECT_NE(errorText(root.setAttr("x", "{loop}")).find("does not end"), std::string::npos);
    EXPECT_FALSE(root.setAttrText("grow", "{grow}{grow}0123456789"));
    EXPECT_NE(errorText(root.setAttr("x", "{grow}")).find("does not end"), std::string::npos);
    EXPECT_FALSE(root.hasAttr("x"));
}

TEST(CObjectAttr, SettersWaitForTheEndOfTheAttributes)
{
    CTestModule module("<root/>", kRows);
    CObject& root = module.loadRoot(R"(<root><test:recorder name="r" first="1" second="2" first-2="3"/></root>)");
    auto& recorder = dynamic_cast<CRecorder&>(CTestModule::find(root, "r"));
    EXPECT_EQ(recorder.calls, "init;first=1;second=2;"); // the last queued first; the class's default queued "second"
    recorder.calls.clear();
    EXPECT_FALSE(recorder.setAttr("first", "5", ESetter::now));
    EXPECT_FALSE(recorder.setAttr("second", "6"));
    EXPECT_EQ(recorder.calls, "first=5;");
    EXPECT_EQ(errorText(recorder.setAttr("bad", "value", ESetter::now)).substr(0, 8), "Refused.");
    EXPECT_EQ(recorder.getAttrString("bad"), "value");
    std::string error;
    EXPECT_EQ(module.tryLoadRoot(R"(<root><test:recorder name="r" bad="1"/></root>)", error), nullptr);
    EXPECT_NE(error.find("Refused."), std::string::npos);
    EXPECT_NE(error.find("// r"), std::string::npos); // the trace names the object
}

TEST(CObjectAttr, BindingsFollowTheirSource)
{
    CTestModule module(R"(<root><style name="style" x="1"/></root>)");
    CObject& root = module.loadRoot(R"(<root><s name="s" v="1" scheme="A"/><box name="box">
        <l name="l" a="{*/s v}" b="{*s v}" scheme="{*/s scheme}" ro="{*/shared::style x}" none="{*/nobody v}"
           me="{*/box.l v}" words="{*a b c}"/></box></root>)");
    CObject& source = CTestModule::find(root, "s");
    CObject& local = CTestModule::find(root, "box.l");
    EXPECT_EQ(local.getAttrString("a") + local.getAttrString("b") + local.getAttrString("scheme"), "11");
    for (const char* const unbound : {"ro", "none", "me", "words"})
        EXPECT_EQ(local.getAttrString(unbound, "?"), "") << unbound;
    EXPECT_FALSE(source.setAttrValue("v", 2.5));
    EXPECT_FALSE(source.setAttr("scheme", "B"));
    EXPECT_EQ(local.getAttrDouble("a"), 2.5);
    EXPECT_EQ(local.getAttrDouble("b"), 2.5);
    EXPECT_EQ(local.getAttrDouble("v"), 2.5); // the source's own name as well
    EXPECT_EQ(local.getAttrString("scheme"), "B");
    // A ring of bindings ends where it began.
    EXPECT_FALSE(source.setAttr("v", "{*/box.l a}"));
    EXPECT_FALSE(local.setAttr("a", "9"));
    EXPECT_EQ(source.getAttrString("v"), "9");
    // Either side may go first.
    local.release();
    EXPECT_FALSE(source.setAttr("v", "3"));
    source.release();
}

TEST(CObjectAttr, WhatABoundObjectAnswersReachesAll)
{
    CTestModule module("<root/>", kRows);
    CObject& root = module.loadRoot(R"(<root><s name="s" v="1"/><test:recorder name="r" limited="{*/s v}"/>
        <l name="l" a="{*/s v}"/></root>)");
    EXPECT_FALSE(CTestModule::find(root, "s").setAttr("v", "9"));
    EXPECT_EQ(attr(root, "s", "v") + attr(root, "r", "limited") + attr(root, "l", "a"), "555");
}

TEST(CObjectAttr, SharedObjectsAreReadOnlyOnceBuilt)
{
    CTestModule module(R"(<root a="1"><c name="c" x="2.5"/></root>)");
    CObject& child = module.shared<CObject>("c");
    EXPECT_TRUE(child.isReadOnly() && module.shared().isReadOnly());
    EXPECT_FALSE(child.setAttr("x", "3"));
    EXPECT_EQ(child.getAttrDouble("x"), 2.5);
    CObject* added = nullptr;
    EXPECT_NE(errorText(child.createChild(added, "a", "b", EFromTemplate::no)).find("read-only"), std::string::npos);
    EXPECT_EQ(added, nullptr);
    EXPECT_FALSE(module.loadRoot().isReadOnly());
}

} // namespace qrb
