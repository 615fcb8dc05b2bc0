#include "server/config/ReplacementFile.h"

#include <optional>
#include <system_error>
#include <utility>

#include "server/JsonFile.h"
#include "server/config/FileCalls.h"

namespace hmi {

namespace fs = std::filesystem;

ReplacementFile::ReplacementFile(fs::path target, std::string text)
    : file(std::move(target)), content(std::move(text)) {
    if (!writeBeside())
        WritableFile::open(file).reserve(content.size());  // at least it must be possible
}

ReplacementFile::~ReplacementFile() {
    std::error_code ignored;
    if (!temporary.empty())
        fs::remove(temporary, ignored);
}

/// False when there can be no such file; throws when there can, but not with this content.
bool ReplacementFile::writeBeside() {
    std::optional<WritableFile> beside;
    try {
        beside.emplace(WritableFile::createBeside(file));
    } catch (const std::system_error&) {
        return false;
    }
    temporary = beside->path();
    bool isReplacement = false;
    try {
        isReplacement = areOnOneDisk(temporary, file) && beside->takeRightsOf(file);
        if (isReplacement)
            beside->write(content);
    } catch (...) {
        fs::remove(std::exchange(temporary, {}));
        throw;
    }
    if (!isReplacement)
        fs::remove(std::exchange(temporary, {}));
    return isReplacement;
}

/// When it fails halfway the file gets its old content back, for which there was room.
void ReplacementFile::writeOver() {
    const std::string old = readFile(file);
    WritableFile over = WritableFile::open(file);
    over.reserve(content.size());
    try {
        over.write(content);
    } catch (const std::system_error&) {
        over.write(old);
        throw;
    }
}

void ReplacementFile::commit() {
    if (temporary.empty())
        return writeOver();
    std::error_code error;
    fs::rename(temporary, file, error);
    if (error)
        return writeOver();
    temporary.clear();
    flushDirectoryOf(file);
}

}  // namespace hmi
