#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <span>
#include <thread>
#include <vector>

#include "platform/Mutex.h"
#include "simulator/runtime/Border.h"
#include "simulator/runtime/Connection.h"

namespace ZrSimulator {

/// Delivers the notifications of one runtime to its connected loggers, in order and on a thread
/// of its own. What is posted while no one is connected is lost. A client that leaves more than a
/// million waiting loses its connection, and with it what waited. Any thread.
class Notifier {
public:
    explicit Notifier(std::shared_ptr<Border> border);
    ~Notifier();

    /// False after `stop`.
    bool open(std::shared_ptr<Connection> connection);
    /// What was not delivered to it is lost; does not wait for a running notification.
    void close(Connection& connection);
    void closeAll();
    std::vector<std::shared_ptr<Connection>> connections();

    void post(const Notification& notification) { post(std::span(&notification, 1)); }
    void post(std::span<const Notification> notifications);
    /// Keeps notifications back until they are released.
    void hold(bool on);
    /// How many are not delivered yet; one counts until its sinks have returned.
    std::size_t queued();
    /// Waits until all are delivered or held back, for no longer than this. Does not wait when it
    /// is called from inside a notification.
    void settle(std::chrono::milliseconds time) { settle(0, time); }
    /// The same until there is room for more: whoever makes events is not faster than those who
    /// take them.
    void awaitRoom(std::chrono::milliseconds time) { settle(roomy, time); }

    /// Closes everything and waits for a running notification. Not from within one.
    void stop();

private:
    struct Delivery {
        std::shared_ptr<Connection> connection;
        Notification notification;
    };
    static constexpr std::size_t maxQueued = 1'000'000;
    static constexpr std::size_t roomy = maxQueued / 10;

    void run();
    void settle(std::size_t left, std::chrono::milliseconds time);
    void deliver(const Delivery& delivery);
    void erase(Connection& connection, std::deque<Delivery>& released) REQUIRES(mutex);

    const std::shared_ptr<Border> border;
    Mutex mutex;
    std::condition_variable_any changed;
    std::vector<std::shared_ptr<Connection>> opened GUARDED_BY(mutex);
    std::deque<Delivery> queue GUARDED_BY(mutex);
    bool held GUARDED_BY(mutex) = false;
    bool delivering GUARDED_BY(mutex) = false;
    std::size_t settling GUARDED_BY(mutex) = 0;  ///< who waits for deliveries
    std::thread::id deliverer GUARDED_BY(mutex);
    bool stopping GUARDED_BY(mutex) = false;
    std::thread thread;
};

}  // namespace ZrSimulator
