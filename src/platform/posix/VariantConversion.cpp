#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>
#include <variant>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>

#include "platform/Automation.h"
#include "platform/Text.h"

namespace {

using Number = std::variant<LONGLONG, ULONGLONG, DOUBLE>;

std::optional<Number> numberIn(const VARIANTARG& variant) {
    switch (variant.vt) {
        case VT_EMPTY:
            return LONGLONG{0};
        case VT_I1:
            return LONGLONG{static_cast<signed char>(variant.cVal)};
        case VT_UI1:
            return LONGLONG{variant.bVal};
        case VT_I2:
            return LONGLONG{variant.iVal};
        case VT_BOOL:
            return LONGLONG{variant.boolVal};
        case VT_UI2:
            return LONGLONG{variant.uiVal};
        case VT_I4:
        case VT_INT:
            return LONGLONG{variant.lVal};
        case VT_UI4:
        case VT_UINT:
            return LONGLONG{variant.ulVal};
        case VT_I8:
            return variant.llVal;
        case VT_UI8:
            return variant.ullVal;
        case VT_R4:
            return DOUBLE{variant.fltVal};
        case VT_R8:
        case VT_DATE:
            return variant.dblVal;
        default:
            return std::nullopt;
    }
}

/// The whole text as a number of type T.
template <class T>
std::errc parse(std::string_view text, Number& number) {
    T value{};
    const char* end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, value);
    if (next != end)
        return std::errc::invalid_argument;
    number = value;
    return error;
}

HRESULT parseNumber(std::string_view text, Number& number) {
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    if (parse<LONGLONG>(text, number) == std::errc() || parse<ULONGLONG>(text, number) == std::errc())
        return S_OK;
    // Names of infinities and of not-a-numbers are numbers to from_chars, but not here.
    if (text.find_first_of("iInN") != std::string_view::npos)
        return DISP_E_TYPEMISMATCH;
    const std::errc error = parse<DOUBLE>(text, number);
    if (error == std::errc())
        return S_OK;
    return error == std::errc::result_out_of_range ? DISP_E_OVERFLOW : DISP_E_TYPEMISMATCH;
}

HRESULT readNumber(const VARIANTARG& from, Number& number) {
    if (from.vt == VT_BSTR) {
        const Utf16View text(from.bstrVal, SysStringLen(from.bstrVal));
        return parseNumber(boost::algorithm::trim_copy(toUtf8(text)), number);
    }
    const auto found = numberIn(from);
    if (!found)
        return DISP_E_TYPEMISMATCH;
    number = *found;
    return S_OK;
}

template <class T, class Source>
bool fits(Source value) {
    if constexpr (std::is_same_v<T, DOUBLE>)
        return true;
    else if constexpr (std::is_floating_point_v<T>)
        return std::is_integral_v<Source> ||
               std::abs(static_cast<DOUBLE>(value)) <= std::numeric_limits<T>::max();
    else if constexpr (std::is_integral_v<Source>)
        return std::in_range<T>(value);
    else
        return value >= static_cast<DOUBLE>(std::numeric_limits<T>::min()) &&
               value < std::ldexp(1.0, std::numeric_limits<T>::digits);
}

/// In bytes; 0 for a type that is no integer.
std::size_t integerSize(VARTYPE type) {
    switch (type) {
        case VT_I1:
        case VT_UI1:
            return 1;
        case VT_I2:
        case VT_UI2:
            return 2;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
            return 4;
        case VT_I8:
        case VT_UI8:
            return 8;
        default:
            return 0;
    }
}

/// Fractions are rounded to the nearest integer, halves to the even one. An integer becomes one
/// of the same size, and a truth value any, without a look at the sign.
template <class T, class Field>
HRESULT store(const VARIANTARG& from, Field& field) {
    Number number;
    if (const HRESULT hr = readNumber(from, number); FAILED(hr))
        return hr;
    const bool keepsBits = from.vt == VT_BOOL || integerSize(from.vt) == sizeof(T);
    return std::visit(
        [&field, keepsBits](auto value) {
            if constexpr (std::is_integral_v<T> && std::is_floating_point_v<decltype(value)>)
                value = std::nearbyint(value);
            if (!keepsBits && !fits<T>(value))
                return DISP_E_OVERFLOW;
            field = static_cast<Field>(value);
            return S_OK;
        },
        number);
}

HRESULT storeBool(const VARIANTARG& from, VARIANT_BOOL& field) {
    if (from.vt == VT_BSTR) {
        const std::string text = toUtf8(Utf16View(from.bstrVal, SysStringLen(from.bstrVal)));
        const bool isTrue = boost::iequals(text, "true") || boost::iequals(text, "#true#");
        if (isTrue || boost::iequals(text, "false") || boost::iequals(text, "#false#")) {
            field = isTrue ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        }
    }
    Number number;
    if (const HRESULT hr = readNumber(from, number); FAILED(hr))
        return hr;
    const bool isTrue = std::visit([](auto value) { return value != 0; }, number);
    field = isTrue ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

/// As many digits as the type keeps for certain.
std::string decimalText(DOUBLE value, int digits) {
    std::array<char, 32> text;
    value += 0.0;  // minus zero has no text of its own
    const auto end = std::to_chars(text.begin(), text.end(), value, std::chars_format::general,
                                   digits)
                         .ptr;
    std::replace(text.begin(), end, 'e', 'E');
    return {text.begin(), end};
}

HRESULT storeText(const VARIANTARG& from, BSTR& field) {
    const auto number = numberIn(from);
    if (!number || from.vt == VT_DATE)
        return DISP_E_TYPEMISMATCH;
    const int digits = from.vt == VT_R4 ? std::numeric_limits<FLOAT>::digits10 + 1
                                        : std::numeric_limits<DOUBLE>::digits10;
    const std::string text = std::visit(
        [digits](auto value) {
            if constexpr (std::is_integral_v<decltype(value)>)
                return std::to_string(value);
            else
                return decimalText(value, digits);
        },
        *number);
    field = newBstr(from.vt == VT_EMPTY ? std::string() : text);
    return S_OK;
}

HRESULT convert(const VARIANTARG& from, VARIANTARG& to) {
    switch (to.vt) {
        case VT_I1:
            return store<signed char>(from, to.cVal);
        case VT_UI1:
            return store<BYTE>(from, to.bVal);
        case VT_I2:
            return store<SHORT>(from, to.iVal);
        case VT_UI2:
            return store<USHORT>(from, to.uiVal);
        case VT_I4:
        case VT_INT:
            return store<LONG>(from, to.lVal);
        case VT_UI4:
        case VT_UINT:
            return store<ULONG>(from, to.ulVal);
        case VT_I8:
            return store<LONGLONG>(from, to.llVal);
        case VT_UI8:
            return store<ULONGLONG>(from, to.ullVal);
        case VT_R4:
            return store<FLOAT>(from, to.fltVal);
        case VT_R8:
            return store<DOUBLE>(from, to.dblVal);
        case VT_DATE:
            return from.vt == VT_BSTR ? DISP_E_TYPEMISMATCH : store<DOUBLE>(from, to.date);
        case VT_BOOL:
            return storeBool(from, to.boolVal);
        case VT_BSTR:
            return storeText(from, to.bstrVal);
        case VT_EMPTY:
        case VT_NULL:
            return from.vt == VT_NULL ? DISP_E_TYPEMISMATCH : S_OK;
        case VT_ERROR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
        case VT_VARIANT:
            return DISP_E_TYPEMISMATCH;
        default:
            return DISP_E_BADVARTYPE;
    }
}

}  // namespace

HRESULT VariantChangeType(VARIANTARG* to, VARIANTARG* from, USHORT, VARTYPE type) {
    if (!to || !from)
        return E_INVALIDARG;
    if (from->vt == type)
        return VariantCopy(to, from);
    VARIANTARG converted;
    VariantInit(&converted);
    converted.vt = type;
    try {
        if (const HRESULT hr = convert(*from, converted); FAILED(hr))
            return hr;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    VariantClear(to);
    *to = converted;
    return S_OK;
}
