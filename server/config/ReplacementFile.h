#pragma once

#include <filesystem>
#include <string>

namespace hmi {

/// New content for a file: written beside it and on the disk when constructed, in its place after
/// `commit`. A crash leaves the old file or the new one, never a part. Removed when not committed.
/// The file keeps its owner and its rights. Where it cannot be replaced by another (a folder that
/// may not be written, a file that is mounted alone) it is written over instead; a full disk gives
/// it back its old content, and only a crash may leave a part.
class ReplacementFile {
public:
    /// Throws std::system_error when neither can work.
    ReplacementFile(std::filesystem::path file, std::string content);
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    /// Throws std::system_error.
    void commit();

private:
    bool writeBeside();
    void writeOver();

    const std::filesystem::path file;
    const std::string content;
    std::filesystem::path temporary;  ///< empty when there is none
};

}  // namespace hmi
