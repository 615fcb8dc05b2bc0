#include "server/history/HistoryWords.h"

#include <algorithm>
#include <cstdio>

namespace hmi {

namespace {

/// One word, whatever the name holds.
std::string wordOf(char kind, std::string_view name) {
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char byte : name)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3U;
    char word[20];
    std::snprintf(word, sizeof word, "%c%016llx", kind, static_cast<unsigned long long>(hash));
    return word;
}

}  // namespace

std::string targetMark(std::string_view target) {
    return wordOf('t', target);
}

std::string stationMark(std::string_view station) {
    return wordOf('n', station);
}

bool isNameMark(std::string_view word) {
    constexpr std::size_t length = 17;
    return word.size() == length && (word[0] == 't' || word[0] == 'n') &&
           word.find_first_not_of("0123456789abcdef", 1) == std::string_view::npos;
}

std::string changeMark(HistoryChange change) {
    return "c" + std::to_string(static_cast<int>(change));
}

std::string severityMark(std::uint32_t severity) {
    return "v" + std::to_string(std::min(severity, ungraded));
}

std::int64_t placeOf(ZrHmiSrv::Timestamp at) {
    constexpr std::int64_t perMicrosecond = 1024;
    constexpr std::int64_t latest = 8'900'000'000'000'000;  // microseconds, the year 2252
    const std::int64_t ns = at.nanoseconds();
    const std::int64_t microseconds = ns / 1000 - (ns % 1000 < 0 ? 1 : 0);
    return std::clamp(microseconds, -latest, latest) * perMicrosecond;
}

}  // namespace hmi
