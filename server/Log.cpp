#include "server/Log.h"

#include <memory>
#include <string>

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/stdout_sinks.h>

#include "host/Time.h"
#include "server/json/IsoTime.h"
#include "server/json/Utf8.h"

namespace hmi {

namespace {

spdlog::level::level_enum levelOf(LogLevel level) noexcept {
    switch (level) {
        case LogLevel::debug:
            return spdlog::level::debug;
        case LogLevel::info:
            return spdlog::level::info;
        case LogLevel::warning:
            return spdlog::level::warn;
        case LogLevel::error:
            return spdlog::level::err;
        case LogLevel::off:
            break;
    }
    return spdlog::level::off;
}

/// {"time":"2024-05-01T06:07:08.1234567Z","level":"info","message":"..."}
class JsonLine final : public spdlog::formatter {
public:
    void format(const spdlog::details::log_msg& message, spdlog::memory_buf_t& line) override {
        const auto time = message.time.time_since_epoch();
        const auto level = spdlog::level::to_string_view(message.level);
        const std::string text = boost::json::serialize(boost::json::object{
            {"time", isoTime(ZrHmiSrv::Timestamp(
                         std::chrono::duration_cast<std::chrono::nanoseconds>(time).count()))},
            {"level", std::string_view(level.data(), level.size())},
            {"message", std::string_view(message.payload.data(), message.payload.size())}});
        line.append(text.data(), text.data() + text.size());
        line.push_back('\n');
    }
    std::unique_ptr<spdlog::formatter> clone() const override {
        return std::make_unique<JsonLine>();
    }
};

std::unique_ptr<spdlog::formatter> textLine() {
    return std::make_unique<spdlog::pattern_formatter>("%Y-%m-%dT%H:%M:%S.%fZ %l %v",
                                                       spdlog::pattern_time_type::utc, "\n");
}

/// Never destroyed: a thread that the process does not wait for may log to the last.
spdlog::logger& logger() {
    static spdlog::logger* const one = [] {
        auto made = std::make_unique<spdlog::logger>(
            "hmi-server", std::make_shared<spdlog::sinks::stderr_sink_mt>());
        made->set_formatter(textLine());
        return made.release();
    }();
    return *one;
}

}  // namespace

void configureLog(LogLevel level, LogFormat format) {
    logger().set_level(levelOf(level));
    logger().set_formatter(format == LogFormat::json ? std::make_unique<JsonLine>() : textLine());
}

bool isLogged(LogLevel level) noexcept {
    return level != LogLevel::off && logger().should_log(levelOf(level));
}

void log(LogLevel level, std::string_view text) noexcept try {
    if (!isLogged(level))
        return;
    const std::string line = oneLine(text);
    logger().log(levelOf(level), spdlog::string_view_t(line.data(), line.size()));
} catch (...) {
    // Without memory for the line there is nothing left to tell.
}

}  // namespace hmi
