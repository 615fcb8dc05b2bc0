#pragma once

#include <filesystem>
#include <string_view>

namespace hmi {

/// An open file that is written to; closed at the end. Everything throws std::system_error.
class WritableFile {
public:
    /// A file of a name that nobody else has, beside another, which only the owner may read.
    static WritableFile createBeside(const std::filesystem::path& file);
    /// One that is there; a link is not followed.
    static WritableFile open(const std::filesystem::path& file);
    WritableFile(WritableFile&& other) noexcept;
    ~WritableFile();

    const std::filesystem::path& path() const noexcept { return name; }
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

/// Without it a new name might not survive a power failure.
void flushDirectoryOf(const std::filesystem::path& file) noexcept;

}  // namespace hmi
