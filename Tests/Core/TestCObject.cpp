// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CApplication.h"
#include "Core/CModule.h"
#include "Core/CObject.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CProcessState.h"
#include "Tests/Support/CTestModule.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace qrb {

namespace {

std::string g_order; // what the objects of a test have been through

/// Notes each step of its life; fails where its attribute "fail" says.
class CStep : public CObject {
public:
    static void declare(CObjectClassInfo& info)
    {
        CObject::declare(info);
        info.attr<&CStep::setX>("x");
    }
    ~CStep() override { note("~"); }
    CErrorPtr setX(const CObjectAttr& value) { return step("x" + value.toString().toUtf8()); }
    [[nodiscard]] CErrorPtr init() override
    {
        QRB_TRY(CObject::init());
        return step("init");
    }
    [[nodiscard]] CErrorPtr initAttrs() override
    {
        QRB_TRY(CObject::initAttrs());
        return step("attrs");
    }
    [[nodiscard]] CErrorPtr initChilds() override
    {
        QRB_TRY(CObject::initChilds());
        return step("childs");
    }
    [[nodiscard]] CErrorPtr onChildAdded(CObject&) override { return step("added"); }

private:
    void note(const std::string& what) { g_order += getName().toUtf8() + ":" + what + " "; }
    CErrorPtr step(const std::string& what)
    {
        note(what);
        if (getAttrString("fail") == what.c_str())
            return QRB_ERROR("@qrbstr_CStep_step Failed in %1.", what.c_str());
        return {};
    }
};

constexpr CCreatorRow kRows[] = {creatorRow<CStep>("test:step")};
constexpr CCreatorRow kTwice[] = {creatorRow<CObject>("test:two"), creatorRow<CObject>("test:two")};

} // namespace

TEST(CObject, LivesThroughItsStepsInOrder)
{
    CTestModule module("<root/>", kRows);
    g_order.clear();
    CObject& root = module.loadRoot(
        R"(<root><test:step name="a" x="1"><test:step name="b"/><test:step name="c"/></test:step></root>)");
    EXPECT_EQ(g_order, "a:init a:x1 a:attrs a:added b:init b:attrs b:childs a:added c:init c:attrs c:childs a:childs ");
    EXPECT_EQ(CTestModule::find(root, "a.b").state(), EObjectState::built);
    g_order.clear();
    module.releaseRoot(root);
    EXPECT_EQ(g_order, "c:~ b:~ a:~ ");
}

TEST(CObject, ChildrenOfOneNameGetIndices)
{
    CTestModule module;
    CObject& root = module.loadRoot(R"(<root><a name="x" n="0"/><a name="x" n="1"/><a name="x#5" n="5"/>
        <a name="x" n="6"/><b name="p#q"><a name="x" n="in"/></b></root>)");
    const auto n = [&](const char* path) {
        const CObject* const found = root.findObject(path);
        return found != nullptr ? found->getAttrString("n").toUtf8() : "null";
    };
    EXPECT_EQ(n("x"), "0");
    EXPECT_EQ(n("x#1"), "1");
    EXPECT_EQ(n("x#2"), "null");
    EXPECT_EQ(n("x#5"), "5");
    EXPECT_EQ(n("x#6"), "6");
    EXPECT_EQ(n("x#+2"), "5");
    EXPECT_EQ(n("x#+4"), "null");
    EXPECT_EQ(n("x#-0"), "6");
    EXPECT_EQ(n("x#-3"), "0");
    EXPECT_EQ(n("x#-4"), "null");
    EXPECT_EQ(n("p#q.x"), "in");
    EXPECT_EQ(CTestModule::find(root, "x#6").fullName(), "x#6");
    EXPECT_EQ(CTestModule::find(root, "p#q.x").getName(), "x");
    CTestModule::find(root, "x").release();
    EXPECT_EQ(n("x"), "1");
}

TEST(CObject, ChildrenWithOddNamesAreForgottenToo)
{
    CTestModule module;
    CObject& root = module.loadRoot(R"(<root><p name="p"><a name="a.b"/></p><a name="a.b"/><a name="x#999999999"/>
        <a name="x#999999999"/><a name="x#999999999"/></root>)");
    CObject& p = CTestModule::find(root, "p");
    EXPECT_EQ(root.findChild("x#1")->fullName(), "x#1"); // above the last index there is none
    for (CObject* const holder : {&p, &root}) {
        while (!holder->childs().empty() && holder->childs().back() != &p)
            holder->childs().back()->release();
        for (const char* const name : {"a.b", "x", "x#1", "x#999999999", "x#1000000000"})
            EXPECT_EQ(holder->findChild(name), nullptr) << name;
    }
}

TEST(CObject, PathsClimbAndRestart)
{
    CTestModule module(R"(<root><audio name="audio"><f name="f"/></audio></root>)");
    CObject& root = module.loadRoot(R"(<root><a name="a"><b name="b"><c name="c"/></b><d name="d"/></a>
        <core:shortcut name="s"><t name="t" target="a.b"/><ring name="ring" target="s.ring"/></core:shortcut></root>)");
    CObject& c = CTestModule::find(root, "a.b.c");
    const auto name = [](const CObject* found) { return found != nullptr ? found->fullName().toUtf8() : "null"; };
    EXPECT_EQ(name(c.findObject("")), "null");
    EXPECT_EQ(name(c.findObject("a")), "a");
    EXPECT_EQ(name(c.findObject("/a..d")), "a.d");
    EXPECT_EQ(name(c.findObject("^^d")), "a.d");
    EXPECT_EQ(name(c.findObject("^")), "a.b");
    EXPECT_EQ(c.findObject("^^^"), &root);
    EXPECT_EQ(name(c.findObject("^^^^")), "null");
    EXPECT_EQ(name(root.findObject(".a.b")), "a.b");
    EXPECT_EQ(name(root.findObject("a.b.c/a.d")), "a.d");
    EXPECT_EQ(name(c.findObject("shared::audio.f")), "audio.f");
    EXPECT_NE(c.findObject("shared::audio.f"), nullptr);
    EXPECT_EQ(c.findObject("s.t.c"), &c);
    EXPECT_EQ(name(c.findObject("s.ring")), "s.ring"); // a ring of shortcuts ends
    EXPECT_EQ(name(c.findObject("a.x.c")), "null");
}

TEST(CObject, MissingAndWrongObjectsAreNamed)
{
    CTestModule module("<root/>", kRows);
    CObject& root = module.loadRoot(R"(<root><a name="a" to="a.nobody" ok="a" empty="{none}"/></root>)");
    CObject& a = CTestModule::find(root, "a");
    CStep* step = nullptr;
    const auto first = [](CErrorPtr error) { return error ? error->line(0).toUtf8() : "none"; };
    EXPECT_EQ(first(a.findObjectChecked("z", step)), "Unable to find object 'z' ('a')");
    EXPECT_EQ(first(a.findObjectChecked("a", step)), "Incompatible type of object 'a' ('a')");
    EXPECT_EQ(first(a.findObjectByAttr("to", step)),
              "Name attribute 'to' refers to a non-existent object 'a.nobody' ('a')");
    EXPECT_EQ(first(a.findObjectByAttr("ok", step)),
              "Name attribute 'ok' refers to object 'a' ('a') of incompatible type.");
    EXPECT_EQ(first(a.findObjectByAttr("empty", step)), "Object name attribute 'empty' cannot be empty.");
    CObject* object = nullptr;
    EXPECT_FALSE(a.findObjectByAttr("ok", object));
    EXPECT_EQ(object, &a);
}

TEST(CObject, TemplatesMakeObjectsInPlace)
{
    CTestModule module(R"(<root base="shared">
        <template name="far" class="core:object" v="{base}"><template name="inner" class="core:object" w="7"/></template></root>)",
                       kRows);
    CObject& root = module.loadRoot(R"(<root base="own">
        <template name="t" class="test:step" x="1" v="{base}" o="template" c="template" u="{c}">
          <core:object name="child" y="{o}"/></template>
        <box name="box" base="near"/></root>)");
    CObject& box = CTestModule::find(root, "box");
    EXPECT_TRUE(box.hasTemplate("t") && box.hasTemplate("far"));
    EXPECT_FALSE(box.hasTemplate("inner") || root.findObject("t")->childs().size() != 0);
    CAttrOverrides overrides, attrs;
    overrides.set("o", "override");
    overrides.set("c", "override");
    attrs.set("c", "caller");
    CStep* made = nullptr;
    ASSERT_FALSE(box.createChild(made, "t", "made", ERequireTemplate::yes, &overrides, &attrs));
    EXPECT_EQ(made->tag(), "test:step");
    EXPECT_EQ(made->getAttrString("v"), "near");
    EXPECT_EQ(made->getAttrString("o"), "override");
    EXPECT_EQ(made->getAttrString("c"), "caller");
    EXPECT_EQ(made->getAttrString("u"), "template"); // expanded when the template's own value was the last
    EXPECT_EQ(CTestModule::find(root, "box.made.child").getAttrString("y"), "override");

    // The texts of a template belong to its own document, whatever tree it is used in.
    CObject* far = nullptr;
    ASSERT_FALSE(made->createChild(far, "far", "f", ERequireTemplate::yes));
    EXPECT_EQ(far->getAttrString("v"), "near");
    CObject* inner = nullptr;
    ASSERT_FALSE(far->createChild(inner, "inner", "i", ERequireTemplate::yes));
    EXPECT_EQ(inner->getAttrInt("w"), 7);
    CTestModule::find(root, "t").release();
    EXPECT_FALSE(box.hasTemplate("t"));
    EXPECT_EQ(made->getAttrString("v"), "near");
}

TEST(CObject, AChildThatFailsIsGone)
{
    CTestModule module("<root/>", kRows);
    CObject& root = module.loadRoot(R"(<root><test:step name="p"/></root>)");
    CObject& parent = CTestModule::find(root, "p");
    CStep* step = nullptr;
    for (const char* const where : {"init", "attrs", "childs"}) {
        CAttrOverrides attrs;
        attrs.set("fail", where);
        const std::string error =
            errorText(parent.createChild(step, "test:step", "c", ERequireTemplate::no, nullptr, &attrs));
        EXPECT_EQ(error.substr(0, error.find('\n')), std::string("Failed in ") + where + ".");
        EXPECT_EQ(step, nullptr);
    }
    EXPECT_NE(errorText(parent.createChild(step, "core:object", "c", ERequireTemplate::no))
                  .find("Object of invalid class created (child tag 'core:object', child name 'c')."),
              std::string::npos);
    EXPECT_NE(errorText(parent.createChild(step, "nothing", "c", ERequireTemplate::yes))
                  .find("Run-time template 'nothing' does not exist."),
              std::string::npos);
    EXPECT_FALSE(parent.setAttr("fail", "added"));
    CObject* child = nullptr;
    EXPECT_TRUE(parent.createChild(child, "core:object", "c", EFromTemplate::no));
    EXPECT_EQ(child, nullptr);
    EXPECT_TRUE(parent.childs().empty());
}

TEST(CObject, UnknownTagsMakePlainObjectsAndALogLine)
{
    CTestModule module;
    CObject& root = module.loadRoot(R"(<root><ui:buton name="ok" x="1"/><content>words</content></root>)");
    EXPECT_EQ(CTestModule::find(root, "ok").getAttrInt("x"), 1);
    EXPECT_EQ(CTestModule::find(root, "content").getAttrString("value"), "words");
    EXPECT_TRUE(module.hasLogged("Creating CObject 'ok' (tag 'ui:buton')"));
    EXPECT_FALSE(module.hasLogged("Creating CObject 'content' (tag 'content')"));
}

TEST(CObject, NestingAndNamesAreBounded)
{
    CTestModule module;
    CObject* object = &module.loadRoot();
    CErrorPtr error;
    int depth = 0;
    for (; !error && depth < 10000; ++depth) {
        CObject* child = nullptr;
        error = object->createChild(child, "core:object", "n", EFromTemplate::no);
        object = child != nullptr ? child : object;
    }
    EXPECT_EQ(depth, CObject::kMaxDepth + 1);
    CObject* child = nullptr;
    EXPECT_TRUE(
        module.loadRoot().createChild(child, "core:object", CString(std::string(5000, 'n')), EFromTemplate::no));
}

TEST(CModule, EntriesAreCountedAndBeginAnew)
{
    // Whatever other tests of this program still hold.
    const std::size_t heldBefore = CQrbMemAllocator::destroyAll();
    const std::size_t chunksBefore = CQrbMemAllocator::chunkCount();
    for (int round = 0; round < 2; ++round) {
        CModuleConfig config;
        ASSERT_FALSE(CModule::enter(config));
        ASSERT_FALSE(CModule::enter(config));
        CModule::leave();
        ASSERT_NE(processStateOrNull(), nullptr);
        EXPECT_EQ(errorText(CApplication::initSharedObject("")).substr(0, 30), "Shared object already exists.\n");
        CModule::leave();
        EXPECT_EQ(processStateOrNull(), nullptr);
        EXPECT_EQ(CQrbMemAllocator::chunkCount(), chunksBefore);
        EXPECT_EQ(CQrbMemAllocator::destroyAll(), heldBefore);
    }
}

TEST(CModule, RefusesASecondCreatorOfATagAndABrokenSharedDocument)
{
    CModuleConfig config;
    config.creators.append(kTwice);
    EXPECT_NE(errorText(CModule::enter(config)).find("Creator for 'test:two' has already been registered."),
              std::string::npos);
    CModuleConfig missing;
    missing.sharedDocument = "no such file";
    EXPECT_NE(errorText(CModule::enter(missing)).find("Unable to open file 'no such file'"), std::string::npos);
    EXPECT_EQ(processStateOrNull(), nullptr);
}

} // namespace qrb
