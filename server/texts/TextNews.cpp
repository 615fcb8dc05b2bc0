#include "server/texts/TextNews.h"

namespace hmi {

void TextNews::stop() {
    {
        Lock lock(mutex);
        stopping = true;
        changed.notify_all();
    }
    if (thread.joinable())
        thread.join();
}

void TextNews::tellWithin(std::chrono::milliseconds delay) {
    const auto wanted = Clock::now() + delay;
    Lock lock(mutex);
    if (due && *due <= wanted)
        return;
    due = wanted;
    changed.notify_all();
}

void TextNews::run() {
    Lock lock(mutex);
    while (!stopping) {
        if (!due) {
            changed.wait(lock);
        } else if (Clock::now() < *due) {
            changed.wait_until(lock, Clock::time_point(*due));
        } else {
            due.reset();
            lock.unlock();
            sink.post({.type = ChangeType::texts});
            lock.lock();
        }
    }
}

}  // namespace hmi
