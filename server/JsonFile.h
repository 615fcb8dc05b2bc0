#pragma once

#include <filesystem>
#include <string>

#include <boost/json/value.hpp>

namespace hmi {

/// Both throw StartError, which names the file, and for what is no JSON the line.
std::string readFile(const std::filesystem::path& file);
boost::json::value readJsonFile(const std::filesystem::path& file);

}  // namespace hmi
