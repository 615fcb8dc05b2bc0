#pragma once

#include <vector>

#include <boost/circular_buffer.hpp>

#include "platform/Mutex.h"
#include "server/events/Change.h"

namespace hmi {

/// The newest messages that the extension wrote to the server's log. Thread-safe.
class LogBook {
public:
    explicit LogBook(IChangeSink& sink, std::size_t capacity = 100'000)
        : sink(sink), entries(capacity) {}

    using Entries = std::vector<std::shared_ptr<const LogEntry>>;
    struct Page {
        std::uint64_t next;  ///< where to go on reading
        Entries entries;
    };

    void add(ZrHmiSrv::Message message);
    /// Entries from sequence number `since` on, at most `limit`, oldest first.
    Page read(std::uint64_t since, std::size_t limit) const;

private:
    IChangeSink& sink;
    mutable Mutex mutex;  ///< guards all below; nothing but the sink is called under it
    boost::circular_buffer<std::shared_ptr<const LogEntry>> entries GUARDED_BY(mutex);
    std::uint64_t next GUARDED_BY(mutex) = 0;
};

/// The target system of which an entry says that it has been imported; nothing when it says
/// something else.
std::optional<std::string> importedTarget(const ZrHmiSrv::Message& entry);

}  // namespace hmi
