/// From a member function to the plain function that DispCallFunc can call on every platform.
#pragma once

#include <concepts>
#include <cstddef>
#include <type_traits>

#include "targetsystem/proxy/CallDescription.h"

namespace ZrAtlCom {

/// How a parameter of type P travels: interfaces as their IDispatch, enumerations as numbers.
template <class P>
struct WireType {
    using type = P;
};
template <class P>
requires std::is_enum_v<P>
struct WireType<P> {
    using type = std::underlying_type_t<P>;
};
template <class P>
requires std::is_convertible_v<P, IDispatch*>
struct WireType<P> {
    using type = IDispatch*;
};

/// Whether a value of type P is what DispCallFunc passes, or returns, for a variant type.
template <class P>
constexpr bool travelsAs(VARTYPE type) {
    using Wire = typename WireType<P>::type;
    constexpr bool number = std::is_integral_v<Wire>;
    constexpr std::size_t size = [] {
        if constexpr (std::is_void_v<Wire>)
            return std::size_t{0};
        else
            return sizeof(Wire);
    }();
    switch (type) {
        case VT_EMPTY:
            return std::is_void_v<Wire>;
        case VT_I2:
        case VT_BOOL:
            return number && size == sizeof(SHORT);
        case VT_I4:
        case VT_UI4:
        case VT_ERROR:
            return number && size == sizeof(LONG);
        case VT_I8:
        case VT_UI8:
            return number && size == sizeof(LONGLONG);
        case VT_R8:
            return std::is_same_v<Wire, DOUBLE>;
        case VT_BSTR:
            return std::is_same_v<Wire, BSTR>;
        case VT_DISPATCH:
            return std::is_same_v<Wire, IDispatch*>;
        case VT_UNKNOWN:
            return std::is_same_v<Wire, IUnknown*>;
        default:
            return false;
    }
}

template <class Result, class... Parameters>
constexpr bool matches(const CallDescription& call) {
    if (call.parameterCount != sizeof...(Parameters) || !travelsAs<Result>(call.returnType))
        return false;
    std::size_t position = 0;
    return (travelsAs<Parameters>(call.parameterTypes[position++]) && ...);
}

/// The plain functions for the members of a class, taken apart by `of(member)`.
template <auto member>
struct SinkMember {
    template <class Sink, class Result, class... Parameters>
    struct Function {
        static constexpr bool isCalledBy(const CallDescription& call) {
            return matches<Result, Parameters...>(call);
        }
        static Result STDMETHODCALLTYPE call(IDispatch* sink,
                                             typename WireType<Parameters>::type... parameters) {
            // Members report their own failures. What escapes one all the same ends here, because
            // the library that notifies must not see it.
            try {
                return (static_cast<Sink*>(sink)->*member)(static_cast<Parameters>(parameters)...);
            } catch (...) {
                return Result();
            }
        }
    };

    template <class Sink, class Result, class... Parameters>
    static Function<Sink, Result, Parameters...> of(Result (Sink::*)(Parameters...));

    using type = decltype(of(member));
};

}  // namespace ZrAtlCom
