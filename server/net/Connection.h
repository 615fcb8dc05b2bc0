#pragma once

#include <functional>
#include <memory>
#include <set>

namespace hmi {

/// The connections that are open. Used on the I/O thread only.
class Connections;

/// A connection of a client; it is in the list for as long as it lives. An operation that is cut
/// off at the end is destroyed, with its connection, after the server: so it keeps the list alive.
class Connection {
public:
    explicit Connection(std::shared_ptr<Connections> all);
    virtual ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Ends the connection as soon as a running request is answered.
    virtual void close() = 0;

protected:
    const std::shared_ptr<Connections> all;
};

class Connections {
public:
    static constexpr std::size_t maximum = 512;

    bool isFull() const noexcept { return open.size() >= maximum; }
    void closeAll();
    /// Called whenever a connection has ended.
    void onEnd(std::function<void()> callback) { ended = std::move(callback); }

private:
    friend class Connection;
    std::set<Connection*> open;
    std::function<void()> ended = [] {};
};

}  // namespace hmi
