#include "server/json/IsoTime.h"

#include <chrono>
#include <limits>

#include "platform/IsoTimeText.h"

namespace hmi {

namespace {

using namespace std::chrono;

constexpr std::int64_t second = 1'000'000'000;

struct Unit {
    char letter;
    std::int64_t nanoseconds;
    bool ofDay;  ///< stands behind the "T"
};

/// In the order in which a duration names them.
constexpr Unit units[] = {{'W', 7 * 86400 * second, false},
                          {'D', 86400 * second, false},
                          {'H', 3600 * second, true},
                          {'M', 60 * second, true},
                          {'S', second, true}};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Takes the digits at the front of `text`. Nothing if there are none or more than 64 bits hold.
std::optional<std::int64_t> takeNumber(std::string_view& text) {
    if (text.empty() || !isDigit(text.front()))
        return std::nullopt;
    std::int64_t number = 0;
    for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1)) {
        const std::int64_t digit = text.front() - '0';
        if (number > (std::numeric_limits<std::int64_t>::max() - digit) / 10)
            return std::nullopt;
        number = number * 10 + digit;
    }
    return number;
}

/// Takes ".25" or ",25" as so many parts of a thousand million; further digits are dropped.
std::optional<std::int64_t> takeFraction(std::string_view& text) {
    text.remove_prefix(1);
    if (text.empty() || !isDigit(text.front()))
        return std::nullopt;
    std::int64_t fraction = 0;
    std::int64_t scale = second;
    for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1)) {
        scale /= 10;
        fraction += (text.front() - '0') * scale;
    }
    return fraction;
}

bool addProduct(std::int64_t& sum, std::int64_t count, std::int64_t unit) {
    if (count > (std::numeric_limits<std::int64_t>::max() - sum) / unit)
        return false;
    sum += count * unit;
    return true;
}

/// Up to a place, over as many zeros as are needed. The years of 64 bits have four digits.
template <class Number>
void writeDigits(std::string& text, std::size_t end, Number number) {
    for (; number != 0; number /= 10)
        text[--end] = static_cast<char>('0' + number % 10);
}

}  // namespace

std::string isoTime(ZrHmiSrv::Timestamp time) {
    // Days from 1677 on fit into 64 bits of these, but not into nanoseconds.
    const auto point = floor<TimeTicks>(sys_time<nanoseconds>{nanoseconds(time.nanoseconds())});
    const auto day = floor<days>(point);
    const year_month_day date{day};
    const hh_mm_ss clock{point - day};
    std::string text = "0000-00-00T00:00:00.0000000Z";
    writeDigits(text, 4, static_cast<int>(date.year()));
    writeDigits(text, 7, static_cast<unsigned>(date.month()));
    writeDigits(text, 10, static_cast<unsigned>(date.day()));
    writeDigits(text, 13, clock.hours().count());
    writeDigits(text, 16, clock.minutes().count());
    writeDigits(text, 19, clock.seconds().count());
    writeDigits(text, 27, clock.subseconds().count());
    return text;
}

std::optional<ZrHmiSrv::Timestamp> parseIsoTime(std::string_view text) {
    // The whole years that 64 bits of nanoseconds hold.
    constexpr sys_days first = year{1678} / January / 1;
    constexpr sys_days end = year{2262} / January / 1;
    const auto time = parseIsoTimeText(text);
    if (!time || *time < first || *time >= end)
        return std::nullopt;
    return ZrHmiSrv::Timestamp(nanoseconds(time->time_since_epoch()).count());
}

std::optional<ZrHmiSrv::Timespan> parseIsoDuration(std::string_view text) {
    if (text.size() < 3 || text.front() != 'P')
        return std::nullopt;
    text.remove_prefix(1);
    std::int64_t sum = 0;
    const Unit* next = units;
    bool behindT = false;
    bool hasFraction = false;
    while (!text.empty()) {
        if (text.front() == 'T' && !behindT) {
            behindT = true;
            text.remove_prefix(1);
        }
        const auto count = takeNumber(text);
        if (!count || hasFraction || text.empty())
            return std::nullopt;
        std::int64_t fraction = 0;
        if (text.front() == '.' || text.front() == ',') {
            const auto taken = takeFraction(text);
            if (!taken || text.empty())
                return std::nullopt;
            fraction = *taken;
            hasFraction = true;
        }
        while (next != std::end(units) && (next->letter != text.front() || next->ofDay != behindT))
            ++next;
        if (next == std::end(units) || !addProduct(sum, *count, next->nanoseconds) ||
            !addProduct(sum, fraction, next->nanoseconds / second))
            return std::nullopt;
        ++next;
        text.remove_prefix(1);
    }
    return ZrHmiSrv::Timespan(sum);
}

std::string isoDuration(ZrHmiSrv::Timespan span) {
    const std::int64_t ns = span.nanoseconds();
    // Unsigned, because the smallest value has no positive counterpart.
    const std::uint64_t size =
        ns < 0 ? 0 - static_cast<std::uint64_t>(ns) : static_cast<std::uint64_t>(ns);
    std::string text = (ns < 0 ? "-PT" : "PT") + std::to_string(size / second);
    if (const std::uint64_t rest = size % second; rest != 0) {
        std::string digits = std::to_string(rest + second).substr(1);
        digits.erase(digits.find_last_not_of('0') + 1);
        text += "." + digits;
    }
    return text + "S";
}

}  // namespace hmi
