#include "server/JsonFile.h"

#include <cerrno>
#include <fstream>
#include <system_error>

#include "server/StartError.h"
#include "server/json/ParseJson.h"

namespace hmi {

std::string readFile(const std::filesystem::path& file) {
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    std::string text;
    char block[65536];
    while (stream && text.size() <= maxFileSize) {
        stream.read(block, sizeof block);
        text.append(block, static_cast<std::size_t>(stream.gcount()));
    }
    if (text.size() > maxFileSize)
        throw StartError(file.string() + ": larger than 64 MiB");
    if (!stream.eof() || stream.bad())
        throw StartError(file.string() +
                         ": cannot be read: " + std::generic_category().message(errno));
    return text;
}

boost::json::value parseJsonFile(const std::filesystem::path& file, const std::string& text) {
    try {
        return parseJson(text);
    } catch (const JsonError& error) {
        throw StartError(file.string() + ": " + error.what());
    }
}

boost::json::value readJsonFile(const std::filesystem::path& file) {
    return parseJsonFile(file, readFile(file));
}

}  // namespace hmi
