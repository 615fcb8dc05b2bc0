#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/NumberVariant.h"
#include "targetsystem/proxy/IDispEventSimpleImpl.h"

namespace {

using ZrAtlCom::CallDescription;

constexpr IID eventsId{0xA1, 0xB2, 0xC3, {1, 2, 3, 4, 5, 6, 7, 8}};

constexpr CallDescription objectAndFlag{CC_STDCALL, VT_UI4, 2, {VT_DISPATCH, VT_BOOL}};
constexpr CallDescription plainCall{CC_STDCALL, VT_EMPTY, 0, {}};
constexpr CallDescription threeNumbers{CC_STDCALL, VT_EMPTY, 3, {VT_I4, VT_I4, VT_I4}};

/// Writes down which of its members was called, with which arguments.
class Sink final : public ZrAtlCom::IDispEventSimpleImpl<0, Sink, &eventsId> {
public:
    std::string called;
    std::unique_ptr<Sink>* owner = nullptr;

    static ZrAtlCom::SinkTable sinkTable() {
        static const ZrAtlCom::SinkEntry table[] = {
            entry<&Sink::onObject, objectAndFlag>(3),
            entry<&Sink::onFailure, plainCall>(12),
            entry<&Sink::onThree, threeNumbers>(13),
        };
        return table;
    }

private:
    ULONG onObject(IDispatch* object, VARIANT_BOOL flag) {
        called = (object == this ? "this, " : "another, ") + std::to_string(flag);
        return 77;
    }
    void onFailure() {
        owner->reset();
        throw std::runtime_error("not for the caller");
    }
    void onThree(LONG a, LONG b, LONG c) {
        called = std::to_string(a) + std::to_string(b) + std::to_string(c);
    }
};

/// Arguments as automation passes them: named ones first, then the others in reverse order.
struct Arguments {
    std::vector<VARIANT> values;
    std::vector<DISPID> named;
};

HRESULT invoke(Sink& sink, DISPID id, DISPPARAMS* parameters, VARIANT* result = nullptr) {
    return sink.Invoke(id, IID_NULL, 0, DISPATCH_METHOD, parameters, result, nullptr, nullptr);
}

HRESULT notify(Sink& sink, DISPID id, Arguments arguments, VARIANT* result = nullptr) {
    DISPPARAMS parameters{arguments.values.data(), arguments.named.data(),
                          static_cast<UINT>(arguments.values.size()),
                          static_cast<UINT>(arguments.named.size())};
    return invoke(sink, id, &parameters, result);
}

TEST(Invoke, mapsPositionalAndNamedArguments) {
    const VARIANT one = number(1);
    const VARIANT two = number(2, VT_UINT);
    const VARIANT three = number(3);
    for (const Arguments& arguments :
         {Arguments{{three, two, one}, {}}, Arguments{{three, two, one}, {2}},
          Arguments{{two, three, one}, {1, 2}}, Arguments{{two, one, three}, {1, 0, 2}}}) {
        Sink sink;
        EXPECT_EQ(notify(sink, 13, arguments), S_OK);
        EXPECT_EQ(sink.called, "123");
    }
}

TEST(Invoke, passesObjectsFlagsAndResults) {
    for (const VARTYPE type : std::array<VARTYPE, 2>{VT_DISPATCH, VT_UNKNOWN}) {
        Sink sink;
        VARIANT argument = number(0, type);
        argument.pdispVal = &sink;
        VARIANT result = number(0);
        EXPECT_EQ(notify(sink, 3, {{number(VARIANT_TRUE, VT_BOOL), argument}, {}}, &result), S_OK);
        EXPECT_EQ(sink.called, "this, -1");
        EXPECT_EQ(result.ulVal, 77u);
    }
}

TEST(Invoke, refusesMalformedArgumentsWithoutACall) {
    const VARIANT one = number(1);
    const std::pair<Arguments, HRESULT> cases[] = {
        {{{one}, {}}, E_INVALIDARG},                      // too few
        {{std::vector(9, one), {}}, E_INVALIDARG},        // too many
        {{{one, one, one}, {8}}, E_FAIL},                 // beyond all positions
        {{{one, one, one}, {-3}}, E_FAIL},                // negative
        {{{one, one, one}, {0, 0}}, E_INVALIDARG},        // two for one position
        {{{one, one, one}, {0}}, E_INVALIDARG},           // where a positional one goes
        {{{one, one, one}, {5}}, E_INVALIDARG},           // behind the parameters
        {{{one, one, one}, {0, 1, 2, 0}}, E_INVALIDARG},  // more names than arguments
        {{{one, number(1, VT_DISPATCH), one}, {}}, DISP_E_TYPEMISMATCH},
        {{{one, one, number(1, VT_I4 | VT_BYREF)}, {}}, DISP_E_TYPEMISMATCH},
    };
    Sink sink;
    for (const auto& [arguments, expected] : cases)
        EXPECT_EQ(notify(sink, 13, arguments), expected);
    DISPPARAMS noValues{nullptr, nullptr, 3, 0};
    EXPECT_EQ(invoke(sink, 13, &noValues), E_INVALIDARG);
    EXPECT_EQ(invoke(sink, 13, nullptr), E_INVALIDARG);
    EXPECT_EQ(invoke(sink, 4, nullptr), S_OK);  // nobody listens to it
    EXPECT_EQ(sink.called, "");
}

TEST(Invoke, survivesAnExceptionAndTheEndOfItsSink) {
    auto owner = std::make_unique<Sink>();
    owner->owner = &owner;
    EXPECT_EQ(notify(*owner, 12, {}), S_OK);
    EXPECT_FALSE(owner);
}

}  // namespace
