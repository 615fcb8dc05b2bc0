#include "simulator/runtime/Notifier.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace ZrSimulator {

Notifier::Notifier(std::shared_ptr<Border> border)
    : border(std::move(border)), thread([this] { run(); }) {}

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
    std::deque<Delivery> released;  // after the lock
    {
        Lock lock(mutex);
        erase(connection, released);
        std::erase_if(opened,
                      [&](const auto& candidate) { return candidate.get() == &connection; });
    }
    changed.notify_all();
}

void Notifier::closeAll() {
    for (const auto& connection : connections())
        close(*connection);
}

void Notifier::erase(Connection& connection, std::deque<Delivery>& released) {
    connection.open = false;
    const auto gone = std::stable_partition(
        queue.begin(), queue.end(),
        [&](const Delivery& delivery) { return delivery.connection.get() != &connection; });
    released.assign(std::make_move_iterator(gone), std::make_move_iterator(queue.end()));
    queue.erase(gone, queue.end());
}

std::vector<std::shared_ptr<Connection>> Notifier::connections() {
    Lock lock(mutex);
    return opened;
}

void Notifier::post(std::span<const Notification> notifications) {
    bool full = false;
    bool isFirst = false;  // otherwise nobody waits for it
    {
        Lock lock(mutex);
        isFirst = queue.empty();
        for (const auto& notification : notifications)
            for (const auto& connection : opened)
                queue.push_back({connection, notification});
        full = queue.size() > maxQueued;
    }
    if (full)
        return closeAll();
    if (isFirst)
        changed.notify_all();
}

void Notifier::hold(bool on) {
    {
        Lock lock(mutex);
        held = on;
    }
    changed.notify_all();
}

std::size_t Notifier::queued() {
    Lock lock(mutex);
    return queue.size() + (delivering ? 1 : 0);
}

void Notifier::settle(std::size_t left, std::chrono::milliseconds time) {
    const auto deadline = std::chrono::steady_clock::now() + time;
    Lock lock(mutex);
    if (deliverer == std::this_thread::get_id())
        return;
    ++settling;
    while (!held && !stopping && queue.size() + (delivering ? 1 : 0) > left &&
           changed.wait_until(lock, deadline) != std::cv_status::timeout) {
    }
    --settling;
}

void Notifier::stop() {
    {
        Lock lock(mutex);
        stopping = true;
    }
    closeAll();
    changed.notify_all();
    if (thread.joinable())
        thread.join();
}

void Notifier::run() {
    Lock lock(mutex);
    deliverer = std::this_thread::get_id();
    for (;;) {
        while (!stopping && (held || queue.empty()))
            changed.wait(lock);
        if (stopping)
            return;
        auto next = std::optional(std::move(queue.front()));
        queue.pop_front();
        delivering = true;
        lock.unlock();
        if (next->connection->open)
            deliver(*next);
        next.reset();
        lock.lock();
        delivering = false;
        if (settling > 0 && (queue.empty() || queue.size() == roomy))
            changed.notify_all();
    }
}

/// A planned failure loses the notification, or what it is about.
void Notifier::deliver(const Delivery& delivery) {
    const auto answer = border->enter(Operation::Notification);
    if (!answer)
        delivery.connection->sinks->deliver(delivery.notification);
    else if (SUCCEEDED(*answer))
        delivery.connection->sinks->deliver(delivery.notification.withoutEvent());
}

}  // namespace ZrSimulator
