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
    std::vector<std::string> trustedProxies;
    std::filesystem::path users;        ///< empty: nobody is asked who they are
    bool open = false;                  ///< to everybody, though nobody is asked
    std::filesystem::path certificate;  ///< empty: no TLS
    std::filesystem::path key;
    std::filesystem::path history;  ///< empty: none is kept
    std::string historyLocale = "en-US";
    std::int64_t historyDays = 90;
    std::int64_t historySize = 4096;  ///< MiB
    LogLevel logLevel = LogLevel::info;
    LogFormat logFormat = LogFormat::text;

    bool hashPassword = false;  ///< instead of a server: read a password, print its hash
    std::string information;  ///< asked for instead of a server: help or version

    /// UTF-8, without the program's name. Throws StartError.
    static Options parse(std::span<const char* const> arguments);
};

}  // namespace hmi
