#include "simulator/plant/FileTime.h"

#include <chrono>
#include <ratio>

namespace ZrSimulator {

namespace {

using std::chrono::sys_days;
using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

constexpr sys_days epoch = std::chrono::year(1601) / 1 / 1;
constexpr std::string_view form = "0000-00-00T00:00:00";
constexpr std::size_t tickDigits = 7;
constexpr std::size_t maxFractionDigits = 9;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool hasForm(std::string_view text) {
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] == '0' ? !isDigit(text[i]) : form[i] != text[i])
            return false;
    }
    return true;
}

int number(std::string_view digits) {
    int value = 0;
    for (const char c : digits)
        value = 10 * value + (c - '0');
    return value;
}

/// ".25" as ticks; the text is empty or a point with digits.
std::optional<Ticks> parseFraction(std::string_view text) {
    if (text.empty())
        return Ticks(0);
    const auto digits = text.substr(1);
    if (text.front() != '.' || digits.empty() || digits.size() > maxFractionDigits)
        return std::nullopt;
    std::int64_t ticks = 0;
    for (std::size_t i = 0; i < maxFractionDigits; ++i) {
        if (i < digits.size() && !isDigit(digits[i]))
            return std::nullopt;
        if (i < tickDigits)
            ticks = 10 * ticks + (i < digits.size() ? digits[i] - '0' : 0);
    }
    return Ticks(ticks);
}

std::optional<sys_days> parseDate(std::string_view text) {
    const std::chrono::year_month_day date{
        std::chrono::year(number(text.substr(0, 4))),
        std::chrono::month(static_cast<unsigned>(number(text.substr(5, 2)))),
        std::chrono::day(static_cast<unsigned>(number(text.substr(8, 2))))};
    if (!date.ok() || sys_days(date) < epoch)
        return std::nullopt;
    return sys_days(date);
}

}  // namespace

FILETIME toFiletime(FileTime time) {
    return {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
}

FileTime currentTime() {
    // In ticks from the start: nanoseconds since 1601 are too many for the clock's 64 bits.
    const auto now = std::chrono::time_point_cast<Ticks>(std::chrono::system_clock::now());
    return static_cast<FileTime>((now - epoch).count());
}

std::optional<FileTime> parseTime(std::string_view text) {
    if (text.size() <= form.size() || text.back() != 'Z' || !hasForm(text))
        return std::nullopt;
    const auto date = parseDate(text);
    const auto fraction = parseFraction(text.substr(form.size(), text.size() - form.size() - 1));
    const int hour = number(text.substr(11, 2));
    const int minute = number(text.substr(14, 2));
    const int second = number(text.substr(17, 2));
    if (!date || !fraction || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    const Ticks time = (*date - epoch) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
                       std::chrono::seconds(second) + *fraction;
    return time.count() > 0 ? std::optional(static_cast<FileTime>(time.count())) : std::nullopt;
}

}  // namespace ZrSimulator
