#include "targetsystem/FnxHelper.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include <boost/algorithm/string/predicate.hpp>

#include "targetsystem/proxy/ZrFnxDll.h"

namespace ZrHmiEventLogger {

namespace {

constexpr std::size_t netIdNumbers = 6;

/// The dot-separated parts, or none when one of them is no number from 0 to 255.
std::vector<std::string_view> splitNetId(std::string_view text) {
    std::vector<std::string_view> parts;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t dot = std::min(text.find('.', start), text.size());
        const std::string_view part = text.substr(start, dot - start);
        unsigned number = 0;
        const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), number);
        if (error != std::errc() || end != part.data() + part.size() || number > 255)
            return {};
        parts.push_back(part);
        start = dot + 1;
    }
    return parts;
}

bool meansThisDevice(std::string_view address) {
    return address.empty() || boost::algorithm::iequals(address, "local");
}

}  // namespace

std::string FnxHelper::readLocalAddress() {
    const std::int32_t port = FnxPortOpen();
    if (port == 0)
        return {};
    FnxNetId netId{};
    const std::int32_t error = FnxGetLocalAddress(port, &netId);
    FnxPortClose(port);
    if (error != 0)
        return {};
    std::string text = std::to_string(netId.b[0]);
    for (std::size_t i = 1; i < netIdNumbers; ++i)
        text += '.' + std::to_string(netId.b[i]);
    return text;
}

bool FnxHelper::needsLocalAddress(std::string_view address) {
    if (meansThisDevice(address))
        return true;
    const auto given = splitNetId(address);
    return !given.empty() && given.size() < netIdNumbers;
}

std::string FnxHelper::resolveAddress(std::string_view address, std::string_view localAddress) {
    if (meansThisDevice(address))
        return std::string(localAddress);
    const auto local = splitNetId(localAddress);
    if (!needsLocalAddress(address) || local.size() != netIdNumbers)
        return std::string(address);
    std::string full;
    for (std::size_t i = 0; i < netIdNumbers - splitNetId(address).size(); ++i)
        full.append(local[i]).push_back('.');
    return full.append(address);
}

}  // namespace ZrHmiEventLogger
