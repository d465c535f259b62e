// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CError.h"

#include "Core/CErrorReporter.h"
#include "Core/CLog.h"

#include <gtest/gtest.h>

namespace qrb {
namespace {

class CCollectingReporter : public CErrorReporter {
public:
    void showError(const CString& details) override { m_shown.append(details); }
    CArray<CString> m_shown;
};

struct CNamed {
    static CString fullName() { return "plugin.modMain"; }
    static CErrorPtr fail(int code) { return QRB_ERROR("@qrbstr_CNamed_fail_Code Code %1 of %2.", code, "disk"); }
    static CErrorPtr pass(int code)
    {
        QRB_TRY(code < 0 ? CErrorPtr() : fail(code));
        return nullptr;
    }
};

TEST(CError, MessagesExpandTheirPlaceholders)
{
    EXPECT_EQ(expandMessage("%1%%%2", {"a", "b"}), "a%b");
    EXPECT_EQ(expandMessage("%3", {"a", "b"}), "");
    EXPECT_EQ(expandMessage("@qrbstr_Key Value %1, %9!", {-5, 2, 3, 4, 5, 6, 7, 8, 1.5}), "Value -5, 1.5!");
    EXPECT_EQ(expandMessage("@no_blank_here"), "@no_blank_here");
    EXPECT_EQ(expandMessage("plain %q%0text%"), "plain text");
    EXPECT_EQ(expandMessage("%1", {"%2", "x"}), "%2"); // arguments are not expanded again
    EXPECT_EQ(expandMessage("%1", {std::string_view("\xE2\x82\xAC")}), CString::fromUtf16(u"\u20AC"));
}

TEST(CError, EachLevelAddsItsTraceLine)
{
    EXPECT_FALSE(CNamed::pass(-1));
    const CErrorPtr error = CNamed::pass(7);
    ASSERT_TRUE(error);
    ASSERT_EQ(error->lineCount(), 3U);
    EXPECT_EQ(error->line(0), "Code 7 of disk.");
    EXPECT_TRUE(error->line(1).startsWith("Tests/Core/TestCError( "));
    EXPECT_TRUE(error->line(2).endsWith(" ) // plugin.modMain"));
    EXPECT_NE(error->line(1), error->line(2));

    CErrorPtr bare = makeError(nullptr, "/build/OpenSource/Source/Core/CObject.cpp", 612, {}, "");
    bare = makeError(std::move(bare), "Core/v1.2/CFile", 9, "root", "More");
    EXPECT_EQ(bare->text(), "Core/CObject( 612 )\r\nMore\r\nCore/v1.2/CFile( 9 ) // root");
}

TEST(CError, ReportsGoToTheReporterInChargeAndToTheLog)
{
    CCollectingReporter outer;
    CArray<CString> logged;
    CLog log;
    log.setSink([&](const CString& line) { logged.append(line); });
    {
        CCollectingReporter inner;
        reportError(CNamed::fail(1));
        reportError(nullptr);
        EXPECT_TRUE(inner.m_shown[0].startsWith("Code 1 of disk.\r\nTests/Core/TestCError( "));
        EXPECT_EQ(inner.m_shown[1], "<no details>");
    }
    reportError(makeError(nullptr, "Core/A.h", 1, {}, ""));
    EXPECT_EQ(outer.m_shown, (CArray<CString>{"Core/A( 1 )"}));
    EXPECT_EQ(logged.size(), 3U);
}

TEST(CErrorReporter, WithoutAReporterStandardErrorGetsTheSameText)
{
    testing::internal::CaptureStderr();
    reportError(makeError(nullptr, "Core/A.cpp", 1, {}, "Gone."));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Quorbel Application Message\nAn issue has happened when executing Quorbel application.\n"
              "Gone.\r\nCore/A( 1 )\n");
}

} // namespace
} // namespace qrb
