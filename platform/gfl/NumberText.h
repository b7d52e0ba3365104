#pragma once

#include <array>
#include <charconv>
#include <string>

/// A number with up to nine digits and a point, whatever the locale.
inline std::string numberText(double number)
{
    std::array<char, 32> digits = {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                   std::chars_format::general, 9);
    return {digits.data(), end.ptr};
}
