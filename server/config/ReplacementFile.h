#pragma once

#include <filesystem>
#include <string_view>

namespace hmi {

/// New content for a file: written beside it and on the disk when constructed, in its place after
/// `commit`. A crash leaves the old file or the new one, never a part. Removed when not committed.
class ReplacementFile {
public:
    /// Throws std::system_error.
    ReplacementFile(std::filesystem::path file, std::string_view content);
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    /// Throws std::system_error.
    void commit();

private:
    const std::filesystem::path file;
    const std::filesystem::path temporary;
    bool committed = false;
};

}  // namespace hmi
