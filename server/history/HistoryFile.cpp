#include "server/history/HistoryFile.h"

#include <algorithm>
#include <array>
#include <string>
#include <system_error>

#include "host/Time.h"
#include "server/Log.h"
#include "server/StartError.h"
#include "server/json/IsoTime.h"

namespace hmi {

namespace {

/// Marks a file as a history: "HMIh".
constexpr std::int64_t application = 0x484d4968;

/// What brings a file from each version to the next. What stands here has been released and stays.
///
/// A change's `place` is its time in microseconds, times 1024, or the next that is free: so it is
/// the order in time, the name of the row in all indexes, and the cursor of a page in one. `series`
/// stands for what filters ask for, so that one index serves them all. `occurrence` is the `seq` of
/// the change with which an alarm came up or a message came; that one has its identity in `raised`
/// and `digest`.
constexpr std::array migrations{
    "CREATE TABLE meta(name TEXT PRIMARY KEY, value INTEGER NOT NULL) WITHOUT ROWID;"
    "INSERT INTO meta VALUES('seq', 0), ('floor', -9223372036854775808);"
    "CREATE TABLE series(id INTEGER PRIMARY KEY, station TEXT NOT NULL, target TEXT NOT NULL,"
    " change INTEGER NOT NULL, severity INTEGER NOT NULL,"
    " UNIQUE(station, target, change, severity));"
    "CREATE TABLE change(place INTEGER PRIMARY KEY, seq INTEGER NOT NULL UNIQUE,"
    " at INTEGER NOT NULL, series INTEGER NOT NULL, occurrence INTEGER,"
    " raised INTEGER NOT NULL, digest INTEGER, event TEXT NOT NULL, text TEXT, by TEXT NOT NULL, comment TEXT NOT NULL);"
    "CREATE INDEX change_of_series ON change(series);"
    "CREATE INDEX change_of_occurrence ON change(occurrence) WHERE occurrence IS NOT NULL;"
    "CREATE INDEX birth ON change(raised, digest) WHERE digest IS NOT NULL;"
    "CREATE VIRTUAL TABLE words USING fts5(text, marks, content='',"
    " tokenize='unicode61 remove_diacritics 2');",
    // The occurrences of alarms whose end the history does not hold.
    "CREATE TABLE unended(occurrence INTEGER PRIMARY KEY, target TEXT NOT NULL);"
    "CREATE INDEX unended_of_target ON unended(target);"};

void migrate(Database& database) {
    const auto version = static_cast<std::size_t>(database.number("PRAGMA user_version"));
    const bool isEmpty = database.number("SELECT count(*) FROM sqlite_schema") == 0;
    if (!isEmpty && database.number("PRAGMA application_id") != application)
        throw StartError("--history: the file is another program's database");
    if (version > migrations.size())
        throw StartError("--history: the file is of a newer version of this program");
    if (isEmpty) {
        database.execute("PRAGMA auto_vacuum = INCREMENTAL");
        database.execute(("PRAGMA application_id = " + std::to_string(application)).c_str());
    }
    database.execute("PRAGMA journal_mode = WAL");
    for (std::size_t done = version; done < migrations.size(); ++done) {
        Transaction transaction(database);
        database.execute(migrations[done]);
        database.execute(("PRAGMA user_version = " + std::to_string(done + 1)).c_str());
        transaction.commit();
    }
}

std::unique_ptr<Database> open(const std::filesystem::path& file) {
    auto database = std::make_unique<Database>(file, Database::Access::write);
    // A killed process loses nothing that was committed; only a machine without power may.
    database->execute("PRAGMA synchronous = NORMAL; PRAGMA cache_size = -65536;"
                      "PRAGMA journal_size_limit = 67108864; PRAGMA temp_store = MEMORY;");
    migrate(*database);
    database->execute("PRAGMA wal_autocheckpoint = 4000");
    return database;
}

std::filesystem::path withSuffix(std::filesystem::path file, const std::string& suffix) {
    file += suffix;
    return file;
}

}  // namespace

std::unique_ptr<Database> openHistoryFile(const std::filesystem::path& file) {
    try {
        return open(file);
    } catch (const DatabaseError& error) {
        if (!error.isBroken())
            throw;
        setAside(file, error.what());
    }
    return open(file);
}

void setAside(const std::filesystem::path& file, const std::string& why) {
    std::string time = isoTime(ZrHmiSrv::Timestamp::now());
    std::erase(time, ':');
    const auto aside = withSuffix(file, ".broken-" + time);
    std::error_code error;
    std::filesystem::rename(file, aside, error);
    if (error)
        throw DatabaseError::misplaced("it is broken (" + why + ") and cannot be renamed: " +
                                       error.message());
    for (const char* part : {"-wal", "-shm"})  // they need not be there
        std::filesystem::rename(withSuffix(file, part), withSuffix(aside, part), error);
    log(LogLevel::error, "history: " + file.string() + " is broken (" + why + ") and is now " +
                             aside.string() + "; a new one is begun");
}

}  // namespace hmi
