#pragma once

#include <filesystem>
#include <memory>

#include "server/history/Database.h"

namespace hmi {

/// The history's database, ready to be written to: made, or brought to this program's version. A
/// file that is broken is renamed, with a line of the log, and a new one begun. Throws DatabaseError,
/// and StartError for a file that is not ours or of a newer program.
std::unique_ptr<Database> openHistoryFile(const std::filesystem::path& file);

/// Renames a file that is broken, and what belongs to it. Nobody writes to it any more.
/// Throws DatabaseError when it cannot be renamed.
void setAside(const std::filesystem::path& file, const std::string& why);

}  // namespace hmi
