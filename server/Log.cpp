#include "server/Log.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <string>

#include "host/Time.h"
#include "server/json/IsoTime.h"

namespace hmi {

namespace {

std::atomic<LogLevel> threshold{LogLevel::info};

constexpr const char* names[] = {"debug", "info", "warning", "error"};

}  // namespace

void setLogLevel(LogLevel level) noexcept {
    threshold = level;
}

bool isLogged(LogLevel level) noexcept {
    return level >= threshold && level < LogLevel::off;
}

void log(LogLevel level, std::string_view text) noexcept try {
    if (!isLogged(level))
        return;
    std::string line = isoTime(ZrHmiSrv::Timestamp::now());
    line.append(" ").append(names[static_cast<int>(level)]).append(" ").append(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
} catch (...) {
    // Without memory for the line there is nothing left to tell.
}

}  // namespace hmi
