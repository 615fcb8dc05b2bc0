#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace hmi {

/// What the database answers in place of doing what it was told.
class DatabaseError : public std::runtime_error {
public:
    /// `code`: SQLite's, extended.
    DatabaseError(int code, const std::string& text) : std::runtime_error(text), code(code) {}

    static DatabaseError broken(const std::string& text);
    static DatabaseError misplaced(const std::string& text);

    /// The file is no database, or not a whole one any more.
    bool isBroken() const noexcept;
    /// It may work later: the disk is full or fails, somebody else holds the file.
    bool mayPass() const noexcept;
    /// The file cannot be made or opened where it is to be.
    bool isMisplaced() const noexcept;
    /// A row of this number is there already.
    bool isTaken() const noexcept;
    bool isOverdue() const noexcept;

private:
    const int code;
};

/// One connection to a database file. Used by one thread at a time.
class Database {
public:
    enum class Access { write, read };

    /// For writing the file is made when it is not there. Throws DatabaseError.
    Database(const std::filesystem::path& file, Access access);

    /// One or several statements without an answer.
    void execute(const char* sql);
    /// The first number that a statement answers; 0 when it answers none.
    std::int64_t number(const char* sql);
    /// Statements that run longer fail; those of the past do not matter.
    void setDeadline(std::chrono::steady_clock::time_point time) { deadline = time; }

    sqlite3* handle() const noexcept { return connection.get(); }

private:
    struct Close {
        void operator()(sqlite3* open) const noexcept;
    };
    std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::time_point::max();
    std::unique_ptr<sqlite3, Close> connection;
};

/// A prepared statement. What is bound to it outlives its run.
class Statement {
public:
    Statement(const Database& database, std::string_view sql);

    /// Begins anew with these values, the first for "?1".
    template <class... Values>
    Statement& bind(const Values&... values) {
        reset();
        int index = 0;
        (bindOne(++index, values), ...);
        return *this;
    }
    /// To the next row; false behind the last one, where it can be bound again.
    bool step();
    /// Runs one that answers nothing.
    void run() {
        while (step()) {
        }
    }
    void reset() noexcept;

    std::int64_t integer(int column) const;
    /// Valid until the next step.
    std::string_view text(int column) const;
    bool isNull(int column) const;

private:
    void bindOne(int index, std::int64_t value);
    void bindOne(int index, std::string_view value);
    void bindOne(int index, std::nullptr_t);
    template <class T>
    void bindOne(int index, const std::optional<T>& value) {
        value ? bindOne(index, *value) : bindOne(index, nullptr);
    }

    struct Finalize {
        void operator()(sqlite3_stmt* prepared) const noexcept;
    };
    std::unique_ptr<sqlite3_stmt, Finalize> statement;
};

/// What is written is kept when it is committed, or never was.
class Transaction {
public:
    explicit Transaction(Database& database) : database(database) {
        database.execute("BEGIN IMMEDIATE");
    }
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void commit() {
        database.execute("COMMIT");
        open = false;
    }

private:
    Database& database;
    bool open = true;
};

}  // namespace hmi
