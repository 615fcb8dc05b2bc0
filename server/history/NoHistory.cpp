/// For systems without the library that keeps it: there is no history there.
#include "server/StartError.h"
#include "server/history/History.h"

namespace hmi {

std::unique_ptr<IHistory> openHistory(const HistorySettings&, HistorySources) {
    throw StartError("this build keeps no history");
}

}  // namespace hmi
