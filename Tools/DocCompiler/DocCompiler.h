// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Compiler of definition documents: XML text to the compiled form that the object runtime loads, and back.
///
/// An element is an object: its tag is the object's tag, its attribute `name` the object's name in the parent's list
/// of children, every other attribute an attribute of the object, in the order written. The root element may have any
/// tag and has no name. Every other element needs the attribute `name` (it may be empty), except `content`, which is
/// named "content" when nothing else is said. Text inside a `content` element becomes its attribute `value`, without
/// the white space around it; text anywhere else is an error.
///
///     <template name="plugin" class="core:object"> ... </template>
///
/// stores a run-time template: `class` is the tag its instances are created under, the other attributes and the
/// children are sealed in its payload. A run-time template cannot be used as a tag; composites in documents are
/// fragments.
///
/// Authoring tags begin with "doc:", which no object of the product does; none of them appears in the result.
///
///     <doc:include file="Graph.xml"/>         takes in the children of the file's root, which must be <doc:part>;
///                                             the path is relative to the file it stands in
///     <doc:repeat count="8" var="i" from="0" step="1"> ... </doc:repeat>
///     <doc:fragment name="knob" args="id title='Two words' size=40"> ... </doc:fragment>
///     <doc:use fragment="knob" id="Drive"> ... </doc:use>
///                                             a copy of the fragment with its arguments; an argument without default
///                                             must be given. Fragments are known from their definition on, in all
///                                             files read after it. Inside a fragment only its own arguments, the
///                                             variables of its own repeats and Options::variables are seen.
///     <doc:slot/>                             in a fragment: takes the children of the <doc:use>
///     <doc:attrs a="1" b="2"/>                adds attributes to the element around it (also from a fragment)
///     <doc:attr name="a" value="1"/>          the same for one attribute with a computed name
///     <doc:element doc:tag="ui:$(kind)" name="x" .../>   an element with a computed tag
///     <doc:if value="$(i)" is="0"> ... </doc:if>         kept if both are equal; `not` instead of `is`: if they differ
///
/// In attribute values and texts `$(i)` is replaced by the variable's text and an expression such as `$(i * 4 + 1)` by
/// its value; there are numbers, variables, parentheses, `+ - * / %` and unary minus. `$$` stands for one "$"; a "$"
/// in front of anything else is itself.

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qrbdoc {

/// One finding in a source text. Lines and columns count from 1 (columns in bytes); 0 where there is no place.
struct Diagnostic {
    std::string file;
    std::size_t line = 0;
    std::size_t column = 0;
    std::string message;

    /// "file:line:column: message", the form that editors jump to.
    [[nodiscard]] std::string text() const;
};

struct Options {
    /// Tag to the attributes its class reads; anything else is warned of, with the nearest known name. Empty: no check.
    /// The attribute "*" accepts every attribute.
    std::map<std::string, std::set<std::string>> knownTags;
    /// Names of run-time templates of other documents: refused as tags like the document's own.
    std::set<std::string> templateNames;
    /// Variables seen everywhere.
    std::map<std::string, std::string> variables;
    /// Gives the text of an included file; nothing if it cannot be read. Files by default.
    std::function<std::optional<std::string>(const std::string& path)> readFile;
};

/// A data file that a document wants in the resource store: an object named "appdata" with the attribute `file`, whose
/// text is "source|resource", or one text for both.
struct PackedFile {
    std::string source; ///< As written: relative to the folder of the document.
    std::string resource;
    Diagnostic place; ///< Where the object stands; without a message.
};

struct Result {
    std::vector<std::uint8_t> bytes; ///< Empty when there are errors.
    std::vector<Diagnostic> errors;
    std::vector<Diagnostic> warnings;
    std::vector<std::string> dependencies; ///< Every file read, each once, the document first.
    std::vector<PackedFile> packedFiles;

    [[nodiscard]] bool ok() const { return errors.empty(); }
    /// All errors, one a line.
    [[nodiscard]] std::string errorText() const;
};

/// Compiles `xml`; `fileName` is named in messages and is what includes are relative to.
[[nodiscard]] Result compileText(std::string_view xml, const std::string& fileName = "document.xml",
                                 const Options& options = {});

/// Compiles the file `path`.
[[nodiscard]] Result compileFile(const std::string& path, const Options& options = {});

struct Printed {
    std::string xml;
    std::string error; ///< What is wrong with the compiled document; empty on success.

    [[nodiscard]] bool ok() const { return error.empty(); }
};

/// Compiled form to XML text, which compiles to the same bytes. Trusts nothing in `bytes`.
[[nodiscard]] Printed print(std::span<const std::uint8_t> bytes);

} // namespace qrbdoc
