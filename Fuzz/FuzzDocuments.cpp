// SPDX-License-Identifier: GPL-3.0-or-later
// Compiled definition documents. What loads is walked and its templates are instantiated.
#include "Core/CApplication.h"
#include "Core/CErrorReporter.h"
#include "Core/CModule.h"
#include "Core/CObject.h"
#include "Core/CProcessState.h"
#include "Core/CResourceStore.h"
#include "Fuzz/CFuzzInput.h"

using namespace fuzz;

namespace {

constexpr const char* kName = "fuzz-document";
constexpr int kMaxObjects = 2000;

class CSilentReporter : public qrb::CErrorReporter {
public:
    void showError(const qrb::CString&) override {}
};

bool enter()
{
    static CSilentReporter& reporter = *new CSilentReporter;
    static_cast<void>(reporter);
    requireSuccess(qrb::CModule::enter({}), "the module can be entered");
    return true;
}

/// Reads what others would read of an object and of those below it.
void walk(qrb::CObject& object, int& left)
{
    if (--left < 0)
        return;
    for (const char* const attribute : {"a", "b", "w", "name"}) {
        static_cast<void>(object.getAttrString(attribute));
        static_cast<void>(object.getAttrDouble(attribute));
    }
    static_cast<void>(object.fullName());
    static_cast<void>(object.findObject(object.getAttrString("w")));
    static_cast<void>(object.runEvent("go"));
    for (qrb::CObject* const child : object.childs())
        walk(*child, left);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool isEntered = enter();
    static_cast<void>(isEntered);
    qrb::processState().resources->add(kName, {data, size});
    qrb::CObject* root = nullptr;
    if (qrb::CApplication::initRootObject(root, kName)) {
        require(root == nullptr, "a document that fails leaves no tree");
        return 0;
    }
    qrb::CObject* made = nullptr;
    for (const char* const name : {"t", "u"})
        static_cast<void>(root->createChild(made, name, "made", qrb::ERequireTemplate::yes));
    int left = kMaxObjects;
    walk(*root, left);
    static_cast<void>(root->setAttr("b", "{a}2"));
    root->release();
    return 0;
}
