#pragma once

#include <filesystem>
#include <string>

#include <boost/json/value.hpp>

namespace hmi {

/// A larger file is not read.
inline constexpr std::size_t maxFileSize = 64 << 20;

/// All throw StartError, which names the file, and for what is no JSON the line.
std::string readFile(const std::filesystem::path& file);
boost::json::value parseJsonFile(const std::filesystem::path& file, const std::string& text);
boost::json::value readJsonFile(const std::filesystem::path& file);

}  // namespace hmi
