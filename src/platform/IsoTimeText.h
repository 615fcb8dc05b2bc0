/// Times as people and files write them, for all who read some.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <ratio>
#include <string_view>

/// 100 ns: as fine as the platform's times are.
using TimeTicks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

/// "2024-05-01T06:07:08.1234567Z": UTC, the fraction with any number of digits or none, of which
/// those beyond 100 ns are dropped. Nothing for any other text.
inline std::optional<std::chrono::sys_time<TimeTicks>> parseIsoTimeText(std::string_view text) {
    using namespace std::chrono;
    constexpr std::string_view form = "0000-00-00T00:00:00";
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (text.size() <= form.size() || text.back() != 'Z')
        return std::nullopt;
    std::array<int, 6> fields{};
    for (std::size_t i = 0, field = 0; i < form.size(); ++i) {
        if (form[i] != '0' ? text[i] != form[i] : !isDigit(text[i]))
            return std::nullopt;
        if (form[i] != '0')
            ++field;
        else
            fields[field] = fields[field] * 10 + (text[i] - '0');
    }
    text.remove_prefix(form.size());
    text.remove_suffix(1);
    TimeTicks fraction{};
    TimeTicks scale = seconds(1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == 0 ? text[i] != '.' || text.size() == 1 : !isDigit(text[i]))
            return std::nullopt;
        if (i > 0)
            fraction += (text[i] - '0') * (scale /= 10);
    }
    const year_month_day date{year{fields[0]}, month{static_cast<unsigned>(fields[1])},
                              day{static_cast<unsigned>(fields[2])}};
    if (!date.ok() || fields[3] > 23 || fields[4] > 59 || fields[5] > 59)
        return std::nullopt;
    return sys_days{date} + hours{fields[3]} + minutes{fields[4]} + seconds{fields[5]} + fraction;
}
