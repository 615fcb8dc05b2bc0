#include "server/net/Connection.h"

namespace hmi {

Connection::Connection(std::shared_ptr<Connections> list) : all(std::move(list)) {
    all->open.insert(this);
}

Connection::~Connection() {
    all->open.erase(this);
    all->ended();
}

void Connections::closeAll() {
    const auto closing = open;
    for (Connection* const connection : closing) {
        if (open.contains(connection))
            connection->close();
    }
}

}  // namespace hmi
