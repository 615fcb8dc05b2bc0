#include "server/config/ReplacementFile.h"

#include <optional>
#include <system_error>
#include <utility>

#include "server/config/FileCalls.h"

namespace hmi {

namespace fs = std::filesystem;

ReplacementFile::ReplacementFile(fs::path target, std::string text)
    : file(std::move(target)), content(std::move(text)) {
    if (!writeBeside())
        WritableFile::open(file);  // at least it must be one that we may write to
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
        isReplacement = beside->takeRightsOf(file);
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

void ReplacementFile::writeOver() {
    WritableFile::open(file).write(content);
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
