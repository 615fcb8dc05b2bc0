/// Between UTF-8 and the UTF-16 of automation. Malformed input becomes U+FFFD, never an error:
/// one for each unit that belongs to no character, so that what follows it is kept.
#pragma once

#include <string>
#include <string_view>

#include "platform/Automation.h"

using Utf16String = std::basic_string<OLECHAR>;
using Utf16View = std::basic_string_view<OLECHAR>;

std::string toUtf8(Utf16View text);
Utf16String toUtf16(std::string_view text);

/// From the code page in which the system writes its own texts.
std::string systemTextToUtf8(std::string_view text);

/// A new BSTR that the receiver frees; throws std::bad_alloc.
BSTR newBstr(std::string_view utf8);

/// A BSTR owned for the length of a scope: for arguments, and to receive results.
class ScopedBstr {
public:
    ScopedBstr() = default;
    explicit ScopedBstr(std::string_view utf8) : text(newBstr(utf8)) {}
    ScopedBstr(const ScopedBstr&) = delete;
    ScopedBstr& operator=(const ScopedBstr&) = delete;
    ~ScopedBstr() { SysFreeString(text); }

    BSTR get() const { return text; }
    /// Where a call stores its result; what was held before is freed.
    BSTR* put() {
        SysFreeString(text);
        text = nullptr;
        return &text;
    }
    std::string utf8() const { return toUtf8(Utf16View(text, SysStringLen(text))); }

private:
    BSTR text = nullptr;
};
