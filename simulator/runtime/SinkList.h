#pragma once

#include <condition_variable>
#include <map>
#include <thread>

#include <boost/container/small_vector.hpp>

#include "platform/Mutex.h"
#include "simulator/runtime/Notification.h"
#include "targetsystem/proxy/ComPtr.h"

namespace ZrSimulator {

/// The sinks that clients have advised on one logger. They get one notification at a time. Any
/// thread.
class SinkList {
public:
    /// The cookie of the sink, never 0; the list holds a reference until it is removed.
    DWORD add(ZrAtlCom::ComPtr<IDispatch> sink);
    /// Waits until the sink's running notification has ended, unless it is called from it. False
    /// when there is no such sink.
    bool remove(DWORD cookie);

    /// Calls the sinks one after the other, with no lock held.
    void deliver(const Notification& notification);

private:
    IDispatch* begin(DWORD cookie);
    void end();
    boost::container::small_vector<DWORD, 4> cookies();

    Mutex mutex;
    std::condition_variable_any ended;
    std::map<DWORD, ZrAtlCom::ComPtr<IDispatch>> sinks GUARDED_BY(mutex);
    DWORD lastCookie GUARDED_BY(mutex) = 0;
    DWORD running GUARDED_BY(mutex) = 0;  ///< the cookie of the sink that is being called
    std::thread::id runner GUARDED_BY(mutex);
};

}  // namespace ZrSimulator
