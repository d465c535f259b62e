// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/QrbPreset/CValueList.h"

#include "Tools/QrbPreset/TextEscape.h"

namespace qrbpreset {

namespace {

class CSplitter {
public:
    CSplitter(std::string_view text, EListKind kind, std::string& error) : m_text(text), m_kind(kind), m_error(error) {}

    bool split(std::vector<std::vector<CEntry>>& out)
    {
        out.emplace_back();
        for (;;) {
            CEntry entry;
            if (!takeEntry(entry))
                return false;
            out.back().push_back(std::move(entry));
            if (m_at == m_text.size())
                return true;
            if (m_text[m_at++] == ',')
                out.emplace_back();
        }
    }

private:
    [[nodiscard]] bool isSeparator(char c) const { return c == ',' || (c == '|' && m_kind == EListKind::components); }

    [[nodiscard]] bool isEnd(char c) const { return isSeparator(c) || (c == '=' && m_kind != EListKind::items); }

    void skipBlanks()
    {
        while (m_at < m_text.size() && trimmed(m_text.substr(m_at, 1)).empty())
            ++m_at;
    }

    bool fail(const std::string& error)
    {
        m_error = error;
        return false;
    }

    bool takeEntry(CEntry& out)
    {
        skipBlanks();
        if (m_at < m_text.size() && m_text[m_at] == '"') {
            if (!takeQuoted(out))
                return false;
        } else {
            out.text = takePlain(&CSplitter::isEnd);
        }
        if (m_at < m_text.size() && m_text[m_at] == '=' && m_kind != EListKind::items) {
            ++m_at;
            out.exact = takePlain(&CSplitter::isSeparator);
        }
        if (m_at < m_text.size() && !isSeparator(m_text[m_at]))
            return fail("a comma is missing behind \"" + escaped(out.text) + "\"");
        if (out.text.empty() && !out.isQuoted && !out.exact)
            return fail("there is nothing between two commas (* stands for the default, \"\" for an empty text)");
        return true;
    }

    std::string takePlain(bool (CSplitter::*isStop)(char) const)
    {
        const std::size_t start = m_at;
        while (m_at < m_text.size() && !(this->*isStop)(m_text[m_at]))
            ++m_at;
        return std::string(trimmed(m_text.substr(start, m_at - start)));
    }

    bool takeQuoted(CEntry& out)
    {
        const std::size_t start = ++m_at;
        while (m_at < m_text.size() && m_text[m_at] != '"')
            m_at += m_text[m_at] == '\\' ? 2 : 1;
        if (m_at >= m_text.size())
            return fail("a quote is not closed");
        const std::optional<std::string> text = unescaped(m_text.substr(start, m_at - start));
        if (!text)
            return fail("unknown escape in a quoted text (there are \\\\ \\\" \\n \\t \\x00)");
        out.text = *text;
        out.isQuoted = true;
        ++m_at;
        skipBlanks();
        return true;
    }

    std::string_view m_text;
    EListKind m_kind;
    std::string& m_error;
    std::size_t m_at = 0;
};

} // namespace

bool splitValues(std::string_view text, EListKind kind, std::vector<std::vector<CEntry>>& out, std::string& error)
{
    out.clear();
    return trimmed(text).empty() || CSplitter(text, kind, error).split(out);
}

std::string quoted(std::string_view text)
{
    return '"' + escaped(text, true) + '"';
}

} // namespace qrbpreset
