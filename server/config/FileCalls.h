#pragma once

#include <filesystem>
#include <string_view>

namespace hmi {

/// An open file that is written to; closed at the end. Everything throws std::system_error.
class WritableFile {
public:
    /// A file of a name that nobody else has, beside another, which only the owner may read. It is
    /// locked for as long as it is open.
    static WritableFile createBeside(const std::filesystem::path& file);
    /// One that is there; a link is not followed.
    static WritableFile open(const std::filesystem::path& file);
    WritableFile(WritableFile&& other) noexcept;
    ~WritableFile();

    const std::filesystem::path& path() const noexcept { return name; }
    /// Takes room on the disk for so many bytes, where the system can; the content stays.
    void reserve(std::size_t size);
    /// The content from the beginning to the end, on the disk when it returns.
    void write(std::string_view content);
    /// Gives it the owner and the access rights of another file. False when that is not allowed.
    bool takeRightsOf(const std::filesystem::path& other);

private:
    WritableFile(std::filesystem::path name, int descriptor)
        : name(std::move(name)), descriptor(descriptor) {}

    std::filesystem::path name;
    int descriptor;
};

/// Removes what `createBeside` has left of a process that was killed. Files of others, links, and
/// files that somebody still has open for writing stay.
void removeLeftBeside(const std::filesystem::path& file) noexcept;

/// Whether one could be renamed to the other.
bool areOnOneDisk(const std::filesystem::path& one, const std::filesystem::path& other) noexcept;

/// Without it a new name might not survive a power failure.
void flushDirectoryOf(const std::filesystem::path& file) noexcept;

}  // namespace hmi
