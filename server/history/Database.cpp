#include "server/history/Database.h"

#include <initializer_list>

#include <sqlite3.h>

namespace hmi {

namespace {

using Clock = std::chrono::steady_clock;

/// How long somebody else may hold the file.
constexpr int patience = 1000;  // milliseconds
/// Steps of SQLite's machine between two looks at the clock.
constexpr int stepsBetweenLooks = 20'000;

[[noreturn]] void fail(sqlite3* connection) {
    throw DatabaseError(sqlite3_extended_errcode(connection), sqlite3_errmsg(connection));
}

bool isOneOf(int code, std::initializer_list<int> codes) {
    for (const int each : codes) {
        if ((code & 0xff) == each)
            return true;
    }
    return false;
}

int isOver(void* deadline) {
    return Clock::now() > *static_cast<Clock::time_point*>(deadline) ? 1 : 0;
}

}  // namespace

DatabaseError DatabaseError::broken(const std::string& text) {
    return {SQLITE_CORRUPT, text};
}

DatabaseError DatabaseError::misplaced(const std::string& text) {
    return {SQLITE_CANTOPEN, text};
}

bool DatabaseError::isBroken() const noexcept {
    return isOneOf(code, {SQLITE_CORRUPT, SQLITE_NOTADB});
}

bool DatabaseError::mayPass() const noexcept {
    return isOneOf(code, {SQLITE_FULL, SQLITE_IOERR, SQLITE_BUSY, SQLITE_LOCKED, SQLITE_NOMEM,
                          SQLITE_CANTOPEN, SQLITE_READONLY, SQLITE_PERM});
}

bool DatabaseError::isMisplaced() const noexcept {
    return isOneOf(code, {SQLITE_CANTOPEN, SQLITE_READONLY, SQLITE_PERM, SQLITE_AUTH});
}

bool DatabaseError::isTaken() const noexcept {
    return code == SQLITE_CONSTRAINT_PRIMARYKEY || code == SQLITE_CONSTRAINT_ROWID;
}

bool DatabaseError::isOverdue() const noexcept {
    return isOneOf(code, {SQLITE_INTERRUPT});
}

void Database::Close::operator()(sqlite3* open) const noexcept {
    sqlite3_close(open);
}

Database::Database(const std::filesystem::path& file, Access access) {
    const auto name = file.u8string();
    sqlite3* opened = nullptr;
    const int flags = access == Access::write ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE
                                              : SQLITE_OPEN_READONLY;
    const int result = sqlite3_open_v2(reinterpret_cast<const char*>(name.c_str()), &opened,
                                       flags | SQLITE_OPEN_NOMUTEX, nullptr);
    connection.reset(opened);
    if (result != SQLITE_OK)
        throw DatabaseError(result, sqlite3_errstr(result));
    sqlite3_extended_result_codes(opened, 1);
    sqlite3_busy_timeout(opened, patience);
    sqlite3_progress_handler(opened, stepsBetweenLooks, isOver, &deadline);
}

void Database::execute(const char* sql) {
    if (sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail(handle());
}

std::int64_t Database::number(const char* sql) {
    Statement statement(*this, sql);
    return statement.step() ? statement.integer(0) : 0;
}

void Statement::Finalize::operator()(sqlite3_stmt* prepared) const noexcept {
    sqlite3_finalize(prepared);
}

Statement::Statement(const Database& database, std::string_view sql) {
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(database.handle(), sql.data(), static_cast<int>(sql.size()), &prepared,
                           nullptr) != SQLITE_OK)
        fail(database.handle());
    statement.reset(prepared);
}

bool Statement::step() {
    switch (sqlite3_step(statement.get())) {
        case SQLITE_ROW:
            return true;
        case SQLITE_DONE:
            reset();
            return false;
        default:
            fail(sqlite3_db_handle(statement.get()));
    }
}

void Statement::reset() noexcept {
    sqlite3_reset(statement.get());
}

std::int64_t Statement::integer(int column) const {
    return sqlite3_column_int64(statement.get(), column);
}

std::string_view Statement::text(int column) const {
    const auto* const text = sqlite3_column_text(statement.get(), column);
    if (!text)
        return {};
    return {reinterpret_cast<const char*>(text),
            static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), column))};
}

bool Statement::isNull(int column) const {
    return sqlite3_column_type(statement.get(), column) == SQLITE_NULL;
}

void Statement::bindOne(int index, std::int64_t value) {
    sqlite3_bind_int64(statement.get(), index, value);
}

void Statement::bindOne(int index, std::string_view value) {
    // An empty text is one too, wherever it stands.
    sqlite3_bind_text(statement.get(), index, value.empty() ? "" : value.data(),
                      static_cast<int>(value.size()), nullptr);
}

void Statement::bindOne(int index, std::nullptr_t) {
    sqlite3_bind_null(statement.get(), index);
}

Transaction::~Transaction() {
    if (open)
        sqlite3_exec(database.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

}  // namespace hmi
