#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "server/Log.h"

namespace hmi {

/// What the command line asks for, and where it is silent the environment (HMI_CONFIG for
/// --config).
struct Options {
    std::filesystem::path extension;
    std::filesystem::path config;
    std::filesystem::path plant;  ///< empty: no simulated runtimes
    std::uint16_t port = 8080;    ///< 0: any free one
    std::string address = "127.0.0.1";
    std::vector<std::string> allowedHosts;
    LogLevel logLevel = LogLevel::info;
    LogFormat logFormat = LogFormat::text;

    std::string information;  ///< asked for instead of a server: help or version

    /// UTF-8, without the program's name. Throws StartError.
    static Options parse(std::span<const char* const> arguments);
};

}  // namespace hmi
