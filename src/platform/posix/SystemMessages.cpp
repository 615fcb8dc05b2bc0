#include <algorithm>
#include <cstring>
#include <string>
#include <system_error>

#include "platform/Automation.h"

namespace {

// An HRESULT of this facility carries a Windows error code in its lower half.
constexpr DWORD facilityWin32 = 0x80070000;

struct SystemError {
    DWORD code;
    std::errc meaning;
};

/// The Windows error codes for which this system has an error of its own.
constexpr SystemError systemErrors[] = {
    {2, std::errc::no_such_file_or_directory},
    {3, std::errc::no_such_file_or_directory},
    {4, std::errc::too_many_files_open},
    {5, std::errc::permission_denied},
    {6, std::errc::bad_file_descriptor},
    {8, std::errc::not_enough_memory},
    {14, std::errc::not_enough_memory},
    {17, std::errc::cross_device_link},
    {19, std::errc::read_only_file_system},
    {20, std::errc::no_such_device},
    {21, std::errc::resource_unavailable_try_again},
    {25, std::errc::io_error},
    {32, std::errc::device_or_resource_busy},
    {33, std::errc::no_lock_available},
    {39, std::errc::no_space_on_device},
    {50, std::errc::not_supported},
    {80, std::errc::file_exists},
    {87, std::errc::invalid_argument},
    {109, std::errc::broken_pipe},
    {112, std::errc::no_space_on_device},
    {123, std::errc::invalid_argument},
    {145, std::errc::directory_not_empty},
    {170, std::errc::device_or_resource_busy},
    {183, std::errc::file_exists},
    {206, std::errc::filename_too_long},
    {995, std::errc::operation_canceled},
    {1117, std::errc::io_error},
    {1223, std::errc::operation_canceled},
    {1225, std::errc::connection_refused},
    {1231, std::errc::network_unreachable},
    {1232, std::errc::host_unreachable},
    {1236, std::errc::connection_aborted},
    {1460, std::errc::timed_out},
    {10013, std::errc::permission_denied},
    {10048, std::errc::address_in_use},
    {10049, std::errc::address_not_available},
    {10051, std::errc::network_unreachable},
    {10053, std::errc::connection_aborted},
    {10054, std::errc::connection_reset},
    {10057, std::errc::not_connected},
    {10060, std::errc::timed_out},
    {10061, std::errc::connection_refused},
    {10065, std::errc::host_unreachable},
};

struct AutomationError {
    HRESULT hr;
    const char* text;
};

constexpr AutomationError automationErrors[] = {
    {CLASS_E_CLASSNOTAVAILABLE, "The library has no such class"},
    {CONNECT_E_NOCONNECTION, "There is no connection with this cookie"},
    {CONNECT_E_CANNOTCONNECT, "The object cannot be connected"},
    {DISP_E_TYPEMISMATCH, "The value has another type than expected"},
    {DISP_E_UNKNOWNNAME, "The name is unknown"},
    {DISP_E_BADVARTYPE, "The variant has an invalid type"},
    {DISP_E_OVERFLOW, "The value is out of the range of its type"},
    {DISP_E_BADINDEX, "The index is out of range"},
};

/// Empty when there is none.
std::string messageText(DWORD message) {
    const auto* known = std::find_if(
        std::begin(automationErrors), std::end(automationErrors),
        [message](const auto& error) { return static_cast<DWORD>(error.hr) == message; });
    if (known != std::end(automationErrors))
        return known->text;
    const bool wrapped = (message & 0xFFFF0000) == facilityWin32;
    const DWORD code = wrapped ? message & 0xFFFF : message;
    const auto* error = std::find_if(std::begin(systemErrors), std::end(systemErrors),
                                     [code](const auto& entry) { return entry.code == code; });
    return error == std::end(systemErrors)
               ? std::string()
               : std::make_error_code(error->meaning).message();
}

}  // namespace

DWORD FormatMessageA(DWORD flags, const void*, DWORD message, DWORD, char* buffer, DWORD size,
                     void*) {
    constexpr DWORD supported = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    if (!(flags & FORMAT_MESSAGE_FROM_SYSTEM) || (flags & ~supported) || !buffer)
        return 0;
    const std::string text = messageText(message);
    if (text.empty() || text.size() >= size)
        return 0;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<DWORD>(text.size());
}
