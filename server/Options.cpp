#include "server/Options.h"

#include <charconv>
#include <functional>
#include <map>
#include <string_view>
#include <utility>

#include "server/StartError.h"

namespace hmi {

namespace {

std::filesystem::path toPath(std::string_view utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::uint16_t toPort(std::string_view text) {
    std::uint16_t port = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), port);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size())
        throw StartError("--port: " + std::string(text) + " is not a number from 0 to 65535");
    return port;
}

LogLevel toLogLevel(std::string_view text) {
    static const std::map<std::string_view, LogLevel> levels{{"debug", LogLevel::debug},
                                                             {"info", LogLevel::info},
                                                             {"warning", LogLevel::warning},
                                                             {"error", LogLevel::error},
                                                             {"off", LogLevel::off}};
    const auto found = levels.find(text);
    if (found == levels.end())
        throw StartError("--log-level: " + std::string(text) +
                         " is none of debug, info, warning, error, off");
    return found->second;
}

using Setter = std::function<void(Options&, std::string_view)>;

const std::map<std::string_view, Setter>& setters() {
    static const std::map<std::string_view, Setter> table{
        {"--extension", [](Options& o, std::string_view v) { o.extension = toPath(v); }},
        {"--config", [](Options& o, std::string_view v) { o.config = toPath(v); }},
        {"--plant", [](Options& o, std::string_view v) { o.plant = toPath(v); }},
        {"--port", [](Options& o, std::string_view v) { o.port = toPort(v); }},
        {"--address", [](Options& o, std::string_view v) { o.address = v; }},
        {"--log-level", [](Options& o, std::string_view v) { o.logLevel = toLogLevel(v); }},
    };
    return table;
}

}  // namespace

Options Options::parse(std::span<const char* const> arguments) {
    Options options;
    std::map<std::string_view, bool> given;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view name = arguments[i];
        if (name == "--help") {
            options.help = true;
            return options;
        }
        const auto setter = setters().find(name);
        if (setter == setters().end())
            throw StartError("unknown argument " + std::string(name));
        if (i + 1 == arguments.size() || *arguments[i + 1] == '\0')
            throw StartError(std::string(name) + ": a value is missing");
        if (std::exchange(given[setter->first], true))
            throw StartError(std::string(name) + " is given twice");
        setter->second(options, arguments[++i]);
    }
    for (const char* required : {"--extension", "--config"}) {
        if (!given.contains(required))
            throw StartError(std::string(required) + " is missing");
    }
    return options;
}

const char* Options::usage() {
    return "hmi-server --extension FILE --config FILE [--plant FILE] [--port N] [--address A]\n"
           "           [--log-level debug|info|warning|error|off]\n";
}

}  // namespace hmi
