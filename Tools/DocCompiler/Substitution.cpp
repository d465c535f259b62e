// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tools/DocCompiler/Substitution.h"

#include <charconv>
#include <cmath>

namespace qrbdoc {

namespace {

bool isNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

bool toNumber(std::string_view text, double& out)
{
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), out);
    return code == std::errc() && end == text.data() + text.size() && std::isfinite(out);
}

/// Nine decimals at most, so that 0.1 + 0.2 is "0.3".
std::string toText(double value)
{
    char buffer[400];
    const auto [end, code] = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 9);
    std::string text(buffer, code == std::errc() ? end : buffer);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.'))
        text.pop_back();
    return text == "-0" ? "0" : text;
}

/// Recursive descent over one expression: sum, product, unary, primary.
class CExpression {
public:
    CExpression(std::string_view text, const VariableLookup& lookup) : m_text(text), m_lookup(lookup) {}

    std::string evaluate(double& out)
    {
        out = sum();
        skipBlanks();
        if (m_error.empty() && m_at != m_text.size())
            fail("'" + std::string(m_text.substr(m_at)) + "' is not understood");
        if (m_error.empty() && !std::isfinite(out))
            fail("the result is not a number");
        return m_error;
    }

private:
    void fail(const std::string& message)
    {
        if (m_error.empty())
            m_error = message;
    }

    void skipBlanks()
    {
        while (m_at < m_text.size() && (m_text[m_at] == ' ' || m_text[m_at] == '\t' || m_text[m_at] == '\n'))
            ++m_at;
    }

    bool take(char c)
    {
        skipBlanks();
        if (m_at >= m_text.size() || m_text[m_at] != c)
            return false;
        ++m_at;
        return true;
    }

    double sum()
    {
        double value = product();
        while (m_error.empty()) {
            if (take('+'))
                value += product();
            else if (take('-'))
                value -= product();
            else
                break;
        }
        return value;
    }

    double product()
    {
        double value = unary();
        while (m_error.empty()) {
            if (take('*'))
                value *= unary();
            else if (take('/'))
                value /= divisor();
            else if (take('%'))
                value = std::fmod(value, divisor());
            else
                break;
        }
        return value;
    }

    double divisor()
    {
        const double value = unary();
        if (value == 0.0)
            fail("division by zero");
        return value;
    }

    double unary()
    {
        if (++m_depth > 100)
            fail("nested too deep");
        const double value = !m_error.empty() ? 0.0 : take('-') ? -unary() : primary();
        --m_depth;
        return value;
    }

    double primary()
    {
        if (take('(')) {
            const double value = sum();
            if (!take(')'))
                fail("a ')' is missing");
            return value;
        }
        const std::size_t start = m_at;
        double value = 0.0;
        if (m_at < m_text.size() && isNameStart(m_text[m_at])) {
            while (m_at < m_text.size() && (isNameStart(m_text[m_at]) || isDigit(m_text[m_at])))
                ++m_at;
            const std::string name(m_text.substr(start, m_at - start));
            const std::string* text = m_lookup(name);
            if (text == nullptr)
                fail("no variable '" + name + "' here");
            else if (!toNumber(trimmed(*text), value))
                fail("'" + *text + "' of variable '" + name + "' is not a number");
            return value;
        }
        while (m_at < m_text.size() && (isDigit(m_text[m_at]) || m_text[m_at] == '.'))
            ++m_at;
        if (!toNumber(m_text.substr(start, m_at - start), value))
            fail("a number or variable is missing");
        return value;
    }

    std::string_view m_text;
    const VariableLookup& m_lookup;
    std::size_t m_at = 0;
    int m_depth = 0;
    std::string m_error;
};

bool isPlainName(std::string_view text)
{
    if (text.empty() || !isNameStart(text[0]))
        return false;
    for (const char c : text)
        if (!isNameStart(c) && !isDigit(c))
            return false;
    return true;
}

std::string evaluate(std::string_view body, const VariableLookup& lookup, std::string& out)
{
    const std::string_view expression = trimmed(body);
    if (isPlainName(expression)) {
        const std::string* text = lookup(expression);
        if (text == nullptr)
            return "no variable '" + std::string(expression) + "' here";
        out += *text;
        return {};
    }
    double value = 0.0;
    const std::string error = CExpression(expression, lookup).evaluate(value);
    if (!error.empty())
        return "in $(" + std::string(body) + "): " + error;
    out += toText(value);
    return {};
}

/// Position of the ")" that closes the "(" in front of `at`; npos if there is none.
std::size_t findClosing(std::string_view text, std::size_t at)
{
    int open = 1;
    for (; at < text.size(); ++at) {
        open += text[at] == '(' ? 1 : text[at] == ')' ? -1 : 0;
        if (open == 0)
            return at;
    }
    return std::string_view::npos;
}

} // namespace

std::string substitute(std::string_view text, const VariableLookup& lookup, std::string& out)
{
    out.clear();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (text[i] != '$' || (next != '$' && next != '(')) {
            out += text[i];
            continue;
        }
        if (next == '$') {
            out += '$';
            ++i;
            continue;
        }
        const std::size_t close = findClosing(text, i + 2);
        if (close == std::string_view::npos)
            return "'$(' without its ')'";
        if (std::string error = evaluate(text.substr(i + 2, close - i - 2), lookup, out); !error.empty())
            return error;
        i = close;
    }
    return {};
}

std::string escapeSubstitution(std::string_view text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        out += text[i];
        if (text[i] == '$' && i + 1 < text.size() && (text[i + 1] == '$' || text[i + 1] == '('))
            out += '$';
    }
    return out;
}

} // namespace qrbdoc
