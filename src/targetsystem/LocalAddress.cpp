#include "targetsystem/LocalAddress.h"

#include <utility>

#include "targetsystem/FnxHelper.h"

namespace ZrHmiEventLogger {

std::string LocalAddress::known() const {
    Lock lock(localAddressMutex);
    return localAddress;
}

std::string LocalAddress::lookUp() {
    if (std::string address = known(); !address.empty())
        return address;
    std::string found = FnxHelper::readLocalAddress();
    Lock lock(localAddressMutex);
    if (localAddress.empty())
        localAddress = std::move(found);
    return localAddress;
}

}  // namespace ZrHmiEventLogger
