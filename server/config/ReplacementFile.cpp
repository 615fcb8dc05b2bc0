#include "server/config/ReplacementFile.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#ifdef _WIN32
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace hmi {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void throwLastError(const fs::path& file) {
    throw std::system_error(errno, std::generic_category(), file.string());
}

#ifdef _WIN32
std::FILE* openForWriting(const fs::path& file) {
    return _wfopen(file.c_str(), L"wb");
}
int flushToDisk(std::FILE* file) {
    return _commit(_fileno(file));
}
void flushDirectory(const fs::path&) noexcept {}
#else
std::FILE* openForWriting(const fs::path& file) {
    return std::fopen(file.c_str(), "wb");
}
int flushToDisk(std::FILE* file) {
    return fsync(fileno(file));
}
/// Without it the new name might not survive a power failure.
void flushDirectory(const fs::path& directory) noexcept {
    const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY);
    if (descriptor < 0)
        return;
    fsync(descriptor);
    close(descriptor);
}
#endif

void writeDurably(const fs::path& file, std::string_view content) {
    std::FILE* const stream = openForWriting(file);
    if (!stream)
        throwLastError(file);
    const bool written = std::fwrite(content.data(), 1, content.size(), stream) == content.size() &&
                         std::fflush(stream) == 0 && flushToDisk(stream) == 0;
    const int reason = errno;
    if (std::fclose(stream) == 0 && written)
        return;
    std::error_code ignored;
    fs::remove(file, ignored);
    errno = reason;
    throwLastError(file);
}

fs::path besideOf(fs::path file) {
    return file += ".new";
}

}  // namespace

ReplacementFile::ReplacementFile(fs::path target, std::string_view content)
    : file(std::move(target)), temporary(besideOf(file)) {
    writeDurably(temporary, content);
    std::error_code ignored;  // other access rights are no reason to lose the change
    const auto status = fs::status(file, ignored);
    if (fs::exists(status))
        fs::permissions(temporary, status.permissions(), ignored);
}

ReplacementFile::~ReplacementFile() {
    std::error_code ignored;
    if (!committed)
        fs::remove(temporary, ignored);
}

void ReplacementFile::commit() {
    fs::rename(temporary, file);
    committed = true;
    flushDirectory(file.has_parent_path() ? file.parent_path() : fs::path("."));
}

}  // namespace hmi
