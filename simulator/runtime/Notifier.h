#pragma once

#include <condition_variable>
#include <deque>
#include <thread>
#include <vector>

#include "platform/Mutex.h"
#include "simulator/runtime/Connection.h"

namespace ZrSimulator {

/// Delivers the notifications of one runtime to its connected loggers, in order and on a thread
/// of its own. What is posted while no one is connected is lost. Any thread.
class Notifier {
public:
    Notifier();
    ~Notifier();

    /// False after `stop`.
    bool open(std::shared_ptr<Connection> connection);
    /// What was not delivered to it is lost; does not wait for a running notification.
    void close(Connection& connection);
    void closeAll();
    std::vector<std::shared_ptr<Connection>> connections();

    void post(const Notification& notification);
    /// Keeps notifications back until they are released.
    void hold(bool on);

    /// Closes everything and waits for a running notification. Not from within one.
    void stop();

private:
    struct Delivery {
        std::shared_ptr<Connection> connection;
        Notification notification;
    };
    void run();

    Mutex mutex;
    std::condition_variable_any changed;
    std::vector<std::shared_ptr<Connection>> opened GUARDED_BY(mutex);
    std::deque<Delivery> queue GUARDED_BY(mutex);
    bool held GUARDED_BY(mutex) = false;
    bool stopping GUARDED_BY(mutex) = false;
    std::thread thread;
};

}  // namespace ZrSimulator
