#include "server/config/FileCalls.h"

#include <algorithm>
#include <cerrno>
#include <random>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <io.h>
#else
#include <sys/file.h>
#include <unistd.h>
#endif

#include "server/Log.h"

namespace hmi {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void throwLastError(const fs::path& file) {
    throw std::system_error(errno, std::generic_category(), file.string());
}

#ifdef _WIN32
int openNew(const fs::path& file) {
    return _wopen(file.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY, _S_IREAD | _S_IWRITE);
}
void lock(int) {}  // nobody else can remove an open file
bool removeLeft(const fs::path& file) {
    std::error_code busy;
    return is_regular_file(fs::symlink_status(file, busy)) && fs::remove(file, busy);
}
int openExisting(const fs::path& file) {
    return _wopen(file.c_str(), _O_WRONLY | _O_BINARY);
}
long writeSome(int descriptor, const char* from, std::size_t size) {
    return _write(descriptor, from, static_cast<unsigned>(std::min<std::size_t>(size, 1 << 20)));
}
int cutAt(int descriptor, std::size_t size) {
    return _chsize_s(descriptor, static_cast<long long>(size));
}
int flush(int descriptor) {
    return _commit(descriptor);
}
int goToBegin(int descriptor) {
    return _lseek(descriptor, 0, SEEK_SET);
}
int reserveRoom(int, std::size_t) {
    return 0;
}
void closeFile(int descriptor) {
    _close(descriptor);
}
#else
int openNew(const fs::path& file) {
    return ::open(file.c_str(), O_CREAT | O_EXCL | O_NOFOLLOW | O_WRONLY | O_CLOEXEC, 0600);
}
void lock(int descriptor) {
    flock(descriptor, LOCK_EX | LOCK_NB);
}
bool removeLeft(const fs::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat status {};
    const bool isLeft = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
                        status.st_uid == geteuid() && status.st_nlink == 1 &&
                        flock(descriptor, LOCK_EX | LOCK_NB) == 0 && unlink(file.c_str()) == 0;
    close(descriptor);
    return isLeft;
}
int openExisting(const fs::path& file) {
    return ::open(file.c_str(), O_NOFOLLOW | O_WRONLY | O_CLOEXEC);
}
ssize_t writeSome(int descriptor, const char* from, std::size_t size) {
    return ::write(descriptor, from, size);
}
int cutAt(int descriptor, std::size_t size) {
    return ftruncate(descriptor, static_cast<off_t>(size));
}
int flush(int descriptor) {
    return fsync(descriptor);
}
off_t goToBegin(int descriptor) {
    return lseek(descriptor, 0, SEEK_SET);
}
int reserveRoom([[maybe_unused]] int descriptor, [[maybe_unused]] std::size_t size) {
#ifdef __linux__
    if (fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) != 0)
        return errno == EOPNOTSUPP || errno == ENOSYS ? 0 : -1;
#endif
    return 0;
}
void closeFile(int descriptor) {
    close(descriptor);
}
#endif

std::string prefixOf(const fs::path& file) {
    return "." + file.filename().string() + ".";
}

constexpr std::string_view suffix = ".new";

/// Whether `createBeside` gives such a name.
bool isGiven(std::string_view name, std::string_view prefix) {
    if (!name.starts_with(prefix) || !name.ends_with(suffix) ||
        name.size() <= prefix.size() + suffix.size())
        return false;
    name.remove_prefix(prefix.size());
    name.remove_suffix(suffix.size());
    return std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

void removeLeftBeside(const fs::path& file) noexcept try {
    const fs::path directory = file.has_parent_path() ? file.parent_path() : fs::path(".");
    std::vector<fs::path> left;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        if (isGiven(entry.path().filename().string(), prefixOf(file)))
            left.push_back(entry.path());
    }
    for (const fs::path& name : left) {
        if (removeLeft(name))
            log(LogLevel::info, name.string() + ": left by a server that was killed; removed");
    }
} catch (const std::exception&) {  // they do no harm
}

WritableFile WritableFile::createBeside(const fs::path& file) {
    std::random_device random;
    constexpr int attempts = 16;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const fs::path name =
            file.parent_path() /
            (prefixOf(file) + std::to_string(random()) + std::string(suffix));
        const int descriptor = openNew(name);
        if (descriptor >= 0) {
            lock(descriptor);
            return {name, descriptor};
        }
        if (errno != EEXIST)
            throwLastError(name);
    }
    throwLastError(file);
}

WritableFile WritableFile::open(const fs::path& file) {
    const int descriptor = openExisting(file);
    if (descriptor < 0)
        throwLastError(file);
    return {file, descriptor};
}

WritableFile::WritableFile(WritableFile&& other) noexcept
    : name(std::move(other.name)), descriptor(std::exchange(other.descriptor, -1)) {}

WritableFile::~WritableFile() {
    if (descriptor >= 0)
        closeFile(descriptor);
}

void WritableFile::reserve(std::size_t size) {
    if (size > 0 && reserveRoom(descriptor, size) != 0)
        throwLastError(name);
}

void WritableFile::write(std::string_view content) {
    const std::size_t size = content.size();
    if (goToBegin(descriptor) != 0)
        throwLastError(name);
    while (!content.empty()) {
        const auto written = writeSome(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            throwLastError(name);
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    if (cutAt(descriptor, size) != 0 || flush(descriptor) != 0)
        throwLastError(name);
}

#ifdef _WIN32
bool WritableFile::takeRightsOf(const fs::path&) {
    return true;  // a folder's files inherit theirs from it
}
bool areOnOneDisk(const fs::path&, const fs::path&) noexcept {
    return true;
}
void flushDirectoryOf(const fs::path&) noexcept {}
#else
bool WritableFile::takeRightsOf(const fs::path& other) {
    struct stat status {};
    if (stat(other.c_str(), &status) != 0)
        return errno == ENOENT;
    struct stat own {};
    if (fstat(descriptor, &own) != 0)
        return false;
    const bool isOwners = own.st_uid == status.st_uid && own.st_gid == status.st_gid;
    return (isOwners || fchown(descriptor, status.st_uid, status.st_gid) == 0) &&
           fchmod(descriptor, status.st_mode & 07777) == 0;
}
bool areOnOneDisk(const fs::path& one, const fs::path& other) noexcept {
    struct stat first {};
    struct stat second {};
    return stat(one.c_str(), &first) != 0 || stat(other.c_str(), &second) != 0 ||
           first.st_dev == second.st_dev;
}
void flushDirectoryOf(const fs::path& file) noexcept {
    const fs::path directory = file.has_parent_path() ? file.parent_path() : fs::path(".");
    const int descriptor = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    fsync(descriptor);
    close(descriptor);
}
#endif

}  // namespace hmi
