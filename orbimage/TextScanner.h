#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

/// Reads numbers from the front of a text by the rules of C's scanf: blanks before a number are
/// passed over, and it ends where no more of it follows. Unlike scanf it knows no locale and no
/// hexadecimal form, and a number that its type cannot hold counts as unreadable. The text outlives
/// it.
class TextScanner
{
public:
    explicit TextScanner(std::string_view text)
        : m_rest(text)
    {}

    /// False if no number stands here; `number` and the place are then as before.
    template <typename Number>
    bool read(Number &number)
    {
        std::string_view text = withoutBlanks();
        if (text.size() > 1 && text[0] == '+' && text[1] != '-')
            text.remove_prefix(1);
        Number found = 0;
        const char *const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, found);
        if (error != std::errc() || !std::isfinite(double(found)))
            return false;
        number = found;
        m_rest = {stop, std::size_t(end - stop)};
        return true;
    }

    /// False, with the place as before, if `letter` does not stand here.
    bool skip(char letter)
    {
        if (m_rest.empty() || m_rest.front() != letter)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }

    void skipBlanks() { m_rest = withoutBlanks(); }

    /// Passes over blanks and the letters after them.
    void skipWord()
    {
        skipBlanks();
        m_rest.remove_prefix(std::min(m_rest.find_first_of(kBlanks), m_rest.size()));
    }

private:
    static constexpr std::string_view kBlanks = " \t\n\v\f\r";

    std::string_view withoutBlanks() const
    {
        return m_rest.substr(std::min(m_rest.find_first_not_of(kBlanks), m_rest.size()));
    }

    std::string_view m_rest;
};

/// The number that `text` begins with; 0 if there is none.
template <typename Number>
Number leadingNumber(std::string_view text)
{
    Number number = 0;
    TextScanner(text).read(number);
    return number;
}
