#include "simulator/plant/Arguments.h"

#include <bit>
#include <charconv>
#include <type_traits>

#include <boost/endian/conversion.hpp>

#include "platform/Text.h"

namespace ZrSimulator {

namespace {

/// How a type of argument travels: its VARTYPE and the number that stands for it in the data.
template <class T>
struct Wire;
template <>
struct Wire<bool> {
    static constexpr VARTYPE type = VT_BOOL;
    using Number = std::int16_t;
    static Number pack(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }
    static bool unpack(Number number) { return number != VARIANT_FALSE; }
};
template <VARTYPE vartype, class T>
struct WireNumber {
    static constexpr VARTYPE type = vartype;
    using Number = T;
    static T pack(T value) { return value; }
    static T unpack(T number) { return number; }
};
template <>
struct Wire<std::int32_t> : WireNumber<VT_I4, std::int32_t> {};
template <>
struct Wire<std::int64_t> : WireNumber<VT_I8, std::int64_t> {};
template <>
struct Wire<std::uint64_t> : WireNumber<VT_UI8, std::uint64_t> {};
template <>
struct Wire<double> {
    static constexpr VARTYPE type = VT_R8;
    using Number = std::uint64_t;
    static Number pack(double value) { return std::bit_cast<Number>(value); }
    static double unpack(Number number) { return std::bit_cast<double>(number); }
};
template <>
struct Wire<std::string> {
    static constexpr VARTYPE type = VT_BSTR;
};

template <class Number>
void append(std::vector<BYTE>& bytes, Number number) {
    BYTE buffer[sizeof(Number)];
    boost::endian::endian_store<Number, sizeof(Number), boost::endian::order::little>(buffer,
                                                                                      number);
    bytes.insert(bytes.end(), std::begin(buffer), std::end(buffer));
}

struct Encoder {
    template <class T>
    void operator()(const T& value) {
        append(block.types, Wire<T>::type);
        if constexpr (std::is_same_v<T, std::string>) {
            append(block.data, static_cast<std::uint32_t>(value.size()));
            block.data.insert(block.data.end(), value.begin(), value.end());
        } else {
            append(block.data, Wire<T>::pack(value));
        }
    }

    ArgumentBlock block;
};

/// Takes values from the front of the data; each member answers nothing when it does not fit.
class Decoder {
public:
    explicit Decoder(std::span<const BYTE> data) : rest(data) {}

    bool atEnd() const { return rest.empty(); }

    template <class Number>
    std::optional<Number> number() {
        if (rest.size() < sizeof(Number))
            return std::nullopt;
        const BYTE* bytes = take(sizeof(Number)).data();
        return boost::endian::endian_load<Number, sizeof(Number), boost::endian::order::little>(
            bytes);
    }

    std::optional<Argument> argument(VARTYPE type) {
        switch (type) {
            case VT_BOOL:
                return value<bool>();
            case VT_I4:
                return value<std::int32_t>();
            case VT_I8:
                return value<std::int64_t>();
            case VT_UI8:
                return value<std::uint64_t>();
            case VT_R8:
                return value<double>();
            case VT_BSTR:
                return text();
            default:
                return std::nullopt;
        }
    }

private:
    template <class T>
    std::optional<Argument> value() {
        const auto packed = number<typename Wire<T>::Number>();
        if (!packed)
            return std::nullopt;
        return Argument(std::in_place_type<T>, Wire<T>::unpack(*packed));
    }

    std::optional<Argument> text() {
        const auto length = number<std::uint32_t>();
        if (!length || *length > rest.size())
            return std::nullopt;
        const auto bytes = take(*length);
        return Argument(std::in_place_type<std::string>, bytes.begin(), bytes.end());
    }

    std::span<const BYTE> take(std::size_t size) {
        const auto taken = rest.first(size);
        rest = rest.subspan(size);
        return taken;
    }

    std::span<const BYTE> rest;
};

std::string toText(const Argument& argument) {
    return std::visit(
        [](const auto& value) -> std::string {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, std::string>) {
                return value;
            } else if constexpr (std::is_same_v<T, bool>) {
                return value ? "true" : "false";
            } else {
                char digits[32];
                return {digits, std::to_chars(std::begin(digits), std::end(digits), value).ptr};
            }
        },
        argument);
}

struct ToVariant {
    void operator()(bool value) { variant.boolVal = Wire<bool>::pack(value); }
    void operator()(std::int32_t value) { variant.lVal = value; }
    void operator()(std::int64_t value) { variant.llVal = value; }
    void operator()(std::uint64_t value) { variant.ullVal = value; }
    void operator()(double value) { variant.dblVal = value; }
    void operator()(const std::string& value) { variant.bstrVal = newBstr(value); }

    VARIANT& variant;
};

}  // namespace

ArgumentBlock encode(const Arguments& arguments) {
    Encoder encoder;
    for (const auto& argument : arguments)
        std::visit(encoder, argument);
    return std::move(encoder.block);
}

std::optional<Arguments> decode(std::span<const BYTE> types, std::span<const BYTE> data) {
    Decoder typeDecoder(types);
    Decoder dataDecoder(data);
    Arguments arguments;
    while (!typeDecoder.atEnd()) {
        const auto type = typeDecoder.number<VARTYPE>();
        auto argument = type ? dataDecoder.argument(*type) : std::nullopt;
        if (!argument)
            return std::nullopt;
        arguments.push_back(std::move(*argument));
    }
    return dataDecoder.atEnd() ? std::optional(std::move(arguments)) : std::nullopt;
}

VARIANT toVariant(const Argument& argument) {
    VARIANT variant;
    VariantInit(&variant);
    std::visit(ToVariant{variant}, argument);
    variant.vt = std::visit(
        [](const auto& value) { return Wire<std::decay_t<decltype(value)>>::type; }, argument);
    return variant;
}

std::string formatText(const std::string& text, const Arguments& arguments) {
    std::string formatted;
    const char* next = text.data();
    const char* const end = next + text.size();
    while (next != end) {
        std::size_t index = 0;
        if (*next == '{') {
            const auto [stop, error] = std::from_chars(next + 1, end, index);
            if (error == std::errc() && stop != end && *stop == '}' && index < arguments.size()) {
                formatted += toText(arguments[index]);
                next = stop + 1;
                continue;
            }
        }
        formatted += *next++;
    }
    return formatted;
}

}  // namespace ZrSimulator
