// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/DocCompiler.h"

#include <gtest/gtest.h>

namespace {

using qrbdoc::compileText;
using qrbdoc::Options;
using qrbdoc::Result;

/// Options whose files are the given texts.
Options withFiles(std::map<std::string, std::string> files)
{
    Options options;
    options.readFile = [files = std::move(files)](const std::string& path) -> std::optional<std::string> {
        const auto found = files.find(path);
        return found == files.end() ? std::nullopt : std::optional(found->second);
    };
    return options;
}

/// What the document prints as, without its XML declaration; the errors if it does not compile.
std::string expanded(const std::string& xml, const Options& options = {})
{
    const Result result = compileText(xml, "a.xml", options);
    if (!result.ok())
        return result.errorText();
    const std::string printed = qrbdoc::print(result.bytes).xml;
    return printed.substr(printed.find('\n') + 1);
}

TEST(DocCompiler, writesTheCompiledFormByteForByte)
{
    const Result result = compileText("<any app='T'><template name='p' class='core:object' a='T'/>"
                                      "<core:object name='é'/></any>");
    ASSERT_TRUE(result.ok()) << result.errorText();
    const std::string strings = std::string("\0app\0T\0template\0p\0core:object\0a\0\xC3\xA9\0", 35);
    std::string expected("\x08\0\0\0\x43\0\0\0", 8);
    for (const int offset : {32, 33, 37, 39, 48, 50, 62, 64})
        expected += std::string{static_cast<char>(offset), 0, 0, 0};
    expected += strings;
    expected += std::string("\0\0\0\0", 4);                    // prefix
    expected += std::string("\0\1\0\1\0\2\0\2\0", 9);          // root: one attribute, two children
    expected += std::string("\3\0\4\0\1\5\0\x0D\0\0\0", 11);   // template p of core:object, 13 bytes
    expected += std::string("\0\0\0\0\0\1\0\6\0\2\0\0\0", 13); // payload: a='T'
    expected += std::string("\5\0\7\0\0\0\0\0\0", 9);          // the object é
    EXPECT_EQ(std::string(result.bytes.begin(), result.bytes.end()), expected);
}

TEST(DocCompiler, printedDocumentCompilesToTheSameBytes)
{
    const std::string xml = "<r a='&lt;&amp;&quot;&apos;&#10;&#9;  $$(i) $$$ $' empty=''>"
                            "<content>one\n two</content><x name=''><content name='c'>t</content></x>"
                            "<template name='outer' class='ui:view'><template name='inner' class='x'>"
                            "<doc:attr name='class' value='y'/><y name='z'/></template></template>"
                            "<doc:element doc:tag='a b' name='n' z='1'>"
                            "<doc:attr name='with blank' value='2'/><doc:attr name='b' value='3'/></doc:element>"
                            "<x name='x#2' v='\xC4\x80 \xF0\x9F\x98\x80'/></r>";
    const Result first = compileText(xml);
    ASSERT_TRUE(first.ok()) << first.errorText();
    const qrbdoc::Printed printed = qrbdoc::print(first.bytes);
    ASSERT_TRUE(printed.ok()) << printed.error;
    const Result second = compileText(printed.xml);
    ASSERT_TRUE(second.ok()) << second.errorText() << printed.xml;
    EXPECT_EQ(first.bytes, second.bytes) << printed.xml;
    EXPECT_NE(printed.xml.find("value=\"one&#10; two\""), std::string::npos) << printed.xml;
}

TEST(DocCompiler, damagedCompiledDocumentsPrintAsErrors)
{
    const Result good = compileText("<r a='b'><template name='t' class='c' d='e'><x name='y'/></template></r>");
    for (std::size_t size = 0; size < good.bytes.size(); ++size)
        EXPECT_FALSE(qrbdoc::print(std::span(good.bytes).first(size)).ok()) << size;
    for (std::size_t i = 0; i < good.bytes.size(); ++i)
        for (const int value : {0x00, 0x7F, 0xFF}) {
            std::vector<std::uint8_t> damaged = good.bytes;
            damaged[i] = static_cast<std::uint8_t>(value);
            // Anything may come out as long as nothing outside of the bytes is read.
            EXPECT_NE(qrbdoc::print(damaged).ok(), qrbdoc::print(damaged).xml.empty());
        }
}

TEST(DocCompiler, repeatsCountAndCompute)
{
    EXPECT_EQ(expanded("<r><doc:repeat count='2' var='i' from='3' step='-1'>"
                       "<x name='b$(i)' v='$(i*4+1) $((i - 1) / 4) $(-i%2) $$(i) $0'>"
                       "<doc:repeat count='$(i-2)' var='j'><doc:element doc:tag='t$(i)$(j)' name='q'/></doc:repeat>"
                       "</x></doc:repeat></r>"),
              "<document>\n"
              "  <x name=\"b3\" v=\"13 0.5 -1 $$(i) $0\">\n"
              "    <t30 name=\"q\"/>\n"
              "  </x>\n"
              "  <x name=\"b2\" v=\"9 0.25 0 $$(i) $0\"/>\n"
              "</document>\n");
}

TEST(DocCompiler, fragmentsTakeArgumentsChildrenAndConditions)
{
    EXPECT_EQ(expanded("<r><doc:fragment name='knob' args=\"id label='Knob $(id)' size=40\">"
                       "<ui:knob name='$(id)' text='$(label)'><doc:if value='$(size)' not='40'>"
                       "<doc:attrs size='$(size)'/></doc:if><doc:slot/></ui:knob></doc:fragment>"
                       "<doc:repeat count='1' var='id' from='7'>"
                       "<doc:use fragment='knob' id='a'><x name='own$(id)'/></doc:use></doc:repeat>"
                       "<doc:use fragment='knob' id='b' label='' size='20'/></r>"),
              "<document>\n"
              "  <ui:knob name=\"a\" text=\"Knob a\">\n"
              "    <x name=\"own7\"/>\n"
              "  </ui:knob>\n"
              "  <ui:knob name=\"b\" text=\"\" size=\"20\"/>\n"
              "</document>\n");
}

TEST(DocCompiler, includesAreRelativeToTheirFile)
{
    const Options options = withFiles({{"sub/b.xml", "<doc:part><doc:include file='c.xml'/><x name='b'/></doc:part>"},
                                       {"sub/c.xml", "<doc:part><doc:fragment name='f'><x name='f'/></doc:fragment>"
                                                     "<doc:use fragment='f'/></doc:part>"}});
    const std::string xml = "<r><doc:include file='sub/b.xml'/><doc:include file='sub/c.xml'/></r>";
    EXPECT_EQ(expanded(xml, options),
              "<document>\n  <x name=\"f\"/>\n  <x name=\"b\"/>\n  <x name=\"f\"/>\n</document>\n");
    EXPECT_EQ(compileText(xml, "a.xml", options).dependencies,
              (std::vector<std::string>{"a.xml", "sub/b.xml", "sub/c.xml"}));
}

TEST(DocCompiler, faultsAreToldWithTheirPlaceAndNothingIsCompiled)
{
    const Options files = withFiles({{"loop.xml", "<doc:part>\n <doc:include file='loop.xml'/></doc:part>"},
                                     {"bad.xml", "<doc:part>\n  <x></doc:part>"},
                                     {"other.xml", "<part/>"}});
    const std::pair<const char*, const char*> cases[] = {
        {"<r>\n  <x name='a'></y></r>", "a.xml:2:17: malformed XML: Start-end tags mismatch"},
        {"", "malformed XML: No document element found"},
        {"<r/><s/>", "a.xml:1:5: a second root element"},
        {"<r>\xFF</r>", "a.xml:1:4: this byte is not UTF-8"},
        {"<r>\n<x name='\xED\xA0\x80'/></r>", "a.xml:2:10: this byte is not UTF-8"},
        {"<r a='&#00;'/>", "a.xml:1:7: there is no such character"},
        {"<r a='&#x11FFFFFF;'/>", "a.xml:1:7: there is no such character"},
        {"<r name='x'/>", "a.xml:1:4: the root has no name"},
        {"<r>\n\t<x/></r>", "a.xml:2:2: 'x' has no name"},
        {"<r a='1'\n   a='2'/>", "a.xml:2:4: attribute 'a' is given twice"},
        {"<r><x name='a' b='2'><doc:attrs c='1' b='1'/></x></r>", "a.xml:1:39: attribute 'b' is given twice"},
        {"<r>text</r>", "a.xml:1:4: only 'content' takes text"},
        {"<r><content>a<!-- -->b</content></r>", "a.xml:1:22: the text of 'content' must be in one piece"},
        {"<r><template name='t'/></r>", "a.xml:1:4: a template needs the attribute 'class'"},
        {"<r><template name='t' class='x'/><y name='u'><t name='v'/></y></r>",
         "a.xml:1:46: 't' is a run-time template"},
        {"<r><known name='v'/></r>", "'known' is a run-time template"},
        {"<r a='x' b='$(i)'/>", "a.xml:1:10: no variable 'i' here"},
        {"<r><doc:repeat count='1'><x name='$(i+)'/></doc:repeat></r>", "a number or variable is missing"},
        {"<r b='$(1/0)'/>", "division by zero"},
        {"<r b='$((1)'/>", "'$(' without its ')'"},
        {"<r><doc:repeat count='-1'/></r>", "'-1' is not a count"},
        {"<r><doc:repaet count='1'/></r>", "no authoring tag 'doc:repaet', did you mean 'doc:repeat'?"},
        {"<r><doc:repeat count='1' form='1'/></r>", "a.xml:1:26: 'doc:repeat' has no attribute 'form'"},
        {"<r><doc:include file='none.xml'/></r>", "a.xml:1:4: cannot read the included file 'none.xml'"},
        {"<r><doc:include file='loop.xml'/></r>", "loop.xml:2:2: 'loop.xml' includes itself"},
        {"<r><doc:include file='bad.xml'/></r>", "bad.xml:2:8: malformed XML"},
        {"<r><doc:include file='other.xml'/></r>", "other.xml:1:1: the root of an included file is 'doc:part'"},
        {"<r><doc:use fragment='nob'/></r>", "no fragment 'nob' is defined"},
        {"<r><doc:fragment name='f' args='a'/><doc:use fragment='f'/></r>", "a.xml:1:37: fragment 'f' needs the arg"},
        {"<r><doc:fragment name='f'/><doc:use fragment='f' a='1'/></r>", "1:50: fragment 'f' has no argument 'a'"},
        {"<r><doc:fragment name='f'><x/></doc:fragment>\n<doc:use fragment='f'/></r>",
         "a.xml:1:27: 'x' has no name (used at a.xml:2:1)"},
        {"<r><doc:fragment name='f'><doc:use fragment='f'/></doc:fragment><doc:use fragment='f'/></r>",
         "nested deeper than 200 levels"},
        {"<r><doc:fragment name='f' args='a'><doc:use fragment='f' a='$(a)$(a)'/></doc:fragment>"
         "<doc:use fragment='f' a='long'/></r>",
         "a.xml:1:58: the text is longer than 1000000 bytes"},
        {"<r><doc:repeat count='1000000'><doc:repeat count='1000000'><doc:repeat count='1000000'/></doc:repeat>"
         "</doc:repeat></r>",
         "a.xml:1:60: more than 2000000 elements"},
        {"<r><doc:slot/></r>", "'doc:slot' outside of a fragment"},
    };
    for (const auto& [xml, message] : cases) {
        Options options = files;
        options.templateNames = {"known"};
        const Result result = compileText(xml, "a.xml", options);
        EXPECT_TRUE(result.bytes.empty()) << xml;
        EXPECT_NE(result.errorText().find(message), std::string::npos) << xml << "\n" << result.errorText();
    }
}

TEST(DocCompiler, countsThatDoNotFitAreRefused)
{
    const auto children = [](int count) {
        return "<r><doc:repeat count='" + std::to_string(count) + "'><x name=''/></doc:repeat></r>";
    };
    const auto texts = [](int count) {
        return "<r><doc:repeat count='" + std::to_string(count / 2) + "'><x name='n$(i)' a='v$(i)'/></doc:repeat></r>";
    };
    const auto attributes = [](int count) {
        return "<r><doc:repeat count='" + std::to_string(count) +
               "'><doc:attr name='a$(i%1000)x$(i)' value=''/></doc:repeat></r>";
    };
    EXPECT_TRUE(compileText(children(65535)).ok());
    EXPECT_NE(compileText(children(65536)).errorText().find("more than 65535 children"), std::string::npos);
    EXPECT_TRUE(compileText(attributes(65535)).ok());
    EXPECT_NE(compileText(attributes(65536)).errorText().find("more than 65535 attributes"), std::string::npos);
    EXPECT_TRUE(compileText(texts(65532)).ok()); // with "", "x" and "a" there are 65535
    EXPECT_NE(compileText(texts(65534)).errorText().find("more than 65536 different texts"), std::string::npos);
}

TEST(DocCompiler, unknownTagsAndAttributesAreWarnedOf)
{
    Options options;
    options.knownTags = {{"core:timer", {"fps", "interval"}}, {"core:object", {"*"}}};
    const Result result = compileText("<r><core:timr name='a'/><core:timer name='b' fsp='3'/>\n"
                                      "<template name='t' class='core:object' x='y'/></r>",
                                      "a.xml", options);
    ASSERT_EQ(result.warnings.size(), 2U);
    EXPECT_EQ(result.warnings[0].text(), "a.xml:1:4: unknown tag 'core:timr', did you mean 'core:timer'?");
    EXPECT_EQ(result.warnings[1].message, "'core:timer' reads no attribute 'fsp', did you mean 'fps'?");
    EXPECT_TRUE(result.ok());
}

} // namespace
