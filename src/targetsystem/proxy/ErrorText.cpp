#include "targetsystem/proxy/ErrorText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string_view>

#include "platform/Text.h"
#include "targetsystem/proxy/ErrorTable.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrAtlCom {

namespace {

constexpr std::uint32_t protocolErrors = 0x98110000;
constexpr std::uint32_t firstShortText = protocolErrors + 0x701;
constexpr std::string_view unspecified = "Unspecified error";

/// The codes that a server answers most, in words of their own; null where there are none.
constexpr std::array shortTexts{
    "service is not supported by server",
    "invalid indexGroup",
    "invalid indexOffset",
    "reading/writing not permitted",
    "parameter size not correct",
    "invalid parameter value(s)",
    "device is not in a ready state",
    "device is busy",
    "invalid context (must be InWindows)",
    "out of memory",
    "invalid parameter value(s)",
    "not found (files, ...)",
    "syntax error in comand or file",
    "objects do not match",
    "object already exists",
    "symbol not found",
    "symbol version invalid",
    "server is in invalid state",
    "FnxTransMode not supported",
    "Notification handle is invalid",
    "Notification client not registered",
    "no more notification handles",
    "size for watch to big",
    "device not initialized",
    "device has a timeout",
    "query interface failed",
    "wrong interface required",
    "class ID is invalid",
    "object ID is invalid",
    "request is pending",
    "request is aborted",
    "signal warning",
    "invalid array index",
    "symbol not active -> release handle and try again",
    "access denied",
    static_cast<const char*>(nullptr),  // 0x724
    static_cast<const char*>(nullptr),
    static_cast<const char*>(nullptr),
    static_cast<const char*>(nullptr),
    static_cast<const char*>(nullptr),
    static_cast<const char*>(nullptr),
    static_cast<const char*>(nullptr),
    static_cast<const char*>(nullptr),
    "exception in device specific code",  // 0x72C
};

constexpr ErrorRecord fixedTexts[] = {
    {0x98110700, "generic error"},
    {0x8000FFFF, "E_UNEXPECTED: Catastrophic failure"},
    {0x80004001, "E_NOTIMPL: Not implemented"},
    {0x80004002, "E_NOINTERFACE: No such interface supported"},
    {0x80004003, "E_POINTER: Invalid pointer"},
    {0x80004004, "E_ABORT: Operation aborted"},
    {0x80004005, "E_FAIL: Unspecified error"},
    {0x80070005, "E_ACCESSDENIED: General access denied error"},
    {0x80070006, "E_HANDLE: Invalid handle"},
    {0x8007000E, "E_OUTOFMEMORY: Ran out of memory"},
    {0x80070057, "E_INVALIDARG: One or more arguments are invalid"},
};

/// The first record of the code, or null.
const char* find(std::span<const ErrorRecord> records, std::uint32_t code) noexcept {
    const auto found = std::find_if(records.begin(), records.end(),
                                    [code](const auto& record) { return record.code == code; });
    return found == records.end() ? nullptr : found->text;
}

std::optional<std::string> libraryText(HRESULT hr) {
    ScopedBstr text;
    if (FAILED(ZrEventLoggerFnxProxyLibErrorMessage(hr, text.put())))
        return std::nullopt;
    return text.utf8();
}

std::string systemText(HRESULT hr) {
    std::array<char, 4096> buffer;
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                        nullptr, static_cast<DWORD>(hr), 0, buffer.data(),
                                        static_cast<DWORD>(buffer.size()), nullptr);
    return systemTextToUtf8({buffer.data(), length});
}

}  // namespace

const char* errorText(HRESULT hr) noexcept {
    const auto bits = static_cast<std::uint32_t>(hr);
    const std::uint32_t offset = bits - firstShortText;
    if (offset < shortTexts.size() && shortTexts[offset])
        return shortTexts[offset];
    if (const char* text = find(fixedTexts, bits))
        return text;
    if (const char* text = find(errorTable(), bits - protocolErrors))
        return text;
    return unspecified.data();
}

std::string describe(HRESULT hr) {
    if (auto text = libraryText(hr))
        return *std::move(text);
    const std::string_view builtIn = errorText(hr);
    if (builtIn == unspecified) {
        if (auto text = systemText(hr); !text.empty())
            return text;
    }
    return std::string(builtIn);
}

std::string hexText(HRESULT hr) {
    std::array<char, 11> text;
    std::snprintf(text.data(), text.size(), "0x%08x", static_cast<unsigned>(hr));
    return text.data();
}

}  // namespace ZrAtlCom
