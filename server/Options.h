#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

#include "server/Log.h"

namespace hmi {

/// What the command line asks for.
struct Options {
    std::filesystem::path extension;
    std::filesystem::path config;
    std::filesystem::path plant;  ///< empty: no simulated runtimes
    std::uint16_t port = 8080;    ///< 0: any free one
    std::string address = "127.0.0.1";
    LogLevel logLevel = LogLevel::info;
    bool help = false;

    /// UTF-8, without the program's name. Throws StartError.
    static Options parse(std::span<const char* const> arguments);
    static const char* usage();
};

}  // namespace hmi
