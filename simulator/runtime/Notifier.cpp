#include "simulator/runtime/Notifier.h"

#include <optional>
#include <utility>

namespace ZrSimulator {

Notifier::Notifier() : thread([this] { run(); }) {}

Notifier::~Notifier() {
    stop();
}

bool Notifier::open(std::shared_ptr<Connection> connection) {
    Lock lock(mutex);
    if (stopping)
        return false;
    connection->open = true;
    opened.push_back(std::move(connection));
    return true;
}

void Notifier::close(Connection& connection) {
    Lock lock(mutex);
    connection.open = false;
    std::erase_if(opened, [&](const auto& candidate) { return candidate.get() == &connection; });
}

void Notifier::closeAll() {
    Lock lock(mutex);
    for (const auto& connection : opened)
        connection->open = false;
    opened.clear();
}

std::vector<std::shared_ptr<Connection>> Notifier::connections() {
    Lock lock(mutex);
    return opened;
}

void Notifier::post(const Notification& notification) {
    {
        Lock lock(mutex);
        for (const auto& connection : opened)
            queue.push_back({connection, notification});
    }
    changed.notify_one();
}

void Notifier::hold(bool on) {
    {
        Lock lock(mutex);
        held = on;
    }
    changed.notify_one();
}

void Notifier::stop() {
    {
        Lock lock(mutex);
        stopping = true;
    }
    closeAll();
    changed.notify_one();
    if (thread.joinable())
        thread.join();
}

void Notifier::run() {
    Lock lock(mutex);
    for (;;) {
        while (!stopping && (held || queue.empty()))
            changed.wait(lock);
        if (stopping)
            return;
        auto next = std::optional(std::move(queue.front()));
        queue.pop_front();
        lock.unlock();
        if (next->connection->open)
            next->connection->sinks->deliver(next->notification);
        next.reset();
        lock.lock();
    }
}

}  // namespace ZrSimulator
