#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Text.h"
#include "proxy/FakeObject.h"
#include "target/proxy/IDispEventSimpleImpl.h"

namespace {

using ZrAtlCom::CallDescription;
using ZrAtlCom::IDispEventSimpleImpl;
using ZrAtlCom::SinkEntry;
using ZrAtlCom::SinkTable;

constexpr IID eventsId{0xA1, 0xB2, 0xC3, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr IID otherId{0xA1, 0xB2, 0xC3, {1, 2, 3, 4, 5, 6, 7, 9}};

enum class Reason : LONG {};

constexpr CallDescription objectAndFlag{CC_STDCALL, VT_EMPTY, 2, {VT_DISPATCH, VT_BOOL}};
constexpr CallDescription reasonCall{CC_STDCALL, VT_UI4, 1, {VT_I4}};
constexpr CallDescription plainCall{CC_STDCALL, VT_EMPTY, 0, {}};
constexpr CallDescription eightCall{
    CC_STDCALL, VT_EMPTY, 8, {VT_I4, VT_I4, VT_I4, VT_I4, VT_I4, VT_I4, VT_I4, VT_I4}};
constexpr CallDescription nineCall{CC_STDCALL, VT_EMPTY, 9, {}};
constexpr CallDescription uncallable{static_cast<CALLCONV>(2), VT_EMPTY, 0, {}};

/// Writes down which of its members was called, with which arguments.
class Sink final : public IDispEventSimpleImpl<0, Sink, &eventsId> {
public:
    std::string called;
    const CallDescription* located = nullptr;

    static SinkTable sinkTable() {
        static const SinkEntry table[] = {
            entry<&Sink::onObject, objectAndFlag>(3),
            entry<&Sink::onReason, reasonCall>(10),
            entry<&Sink::onFailure, plainCall>(12),
            entry<&Sink::onEight, eightCall>(13),
            entry<&Sink::onLocated>(14),
            ofOtherEvents(entry<&Sink::onLocated, plainCall>(15)),
        };
        return table;
    }

    HRESULT STDMETHODCALLTYPE GetFuncInfoFromId(REFIID iid, DISPID id, LCID lcid,
                                                CallDescription& call) override {
        if (!located)
            return IDispEventSimpleImpl::GetFuncInfoFromId(iid, id, lcid, call);
        call = *located;
        return S_OK;
    }

private:
    static SinkEntry ofOtherEvents(SinkEntry entry) {
        entry.interfaceId = &otherId;
        return entry;
    }

    void onObject(FakeDispatch* object, VARIANT_BOOL flag) {
        called = "object " + std::to_string(object->references()) + " flag " + std::to_string(flag);
    }
    ULONG onReason(Reason reason) noexcept {
        called = "reason " + std::to_string(static_cast<LONG>(reason));
        return 77;
    }
    void onFailure() {
        called = "failure";
        throw std::runtime_error("not for the caller");
    }
    void onEight(LONG a, LONG b, LONG c, LONG d, LONG e, LONG f, LONG g, LONG h) {
        for (const LONG number : {a, b, c, d, e, f, g, h})
            called += std::to_string(number);
    }
    void onLocated() { called = "located"; }
};

VARIANT number(LONGLONG value, VARTYPE type = VT_I4) {
    VARIANT made;
    VariantInit(&made);
    made.vt = type;
    made.llVal = value;
    return made;
}

/// Arguments as automation passes them: named ones first, then the others in reverse order.
struct Arguments {
    std::vector<VARIANT> values;
    std::vector<DISPID> named;

    DISPPARAMS parameters() {
        return {values.data(), named.data(), static_cast<UINT>(values.size()),
                static_cast<UINT>(named.size())};
    }
};

HRESULT invoke(Sink& sink, DISPID id, DISPPARAMS* parameters, VARIANT* result = nullptr) {
    return sink.Invoke(id, IID_NULL, 0, DISPATCH_METHOD, parameters, result, nullptr, nullptr);
}

HRESULT notify(Sink& sink, DISPID id, Arguments arguments) {
    DISPPARAMS parameters = arguments.parameters();
    return invoke(sink, id, &parameters);
}

TEST(Invoke, mapsPositionalAndNamedArguments) {
    const struct {
        std::vector<LONG> values;
        std::vector<DISPID> named;
    } waysToSayTheSame[] = {
        {{8, 7, 6, 5, 4, 3, 2, 1}, {}},
        {{8, 7, 6, 5, 4, 3, 2, 1}, {7}},
        {{7, 8, 6, 5, 4, 3, 2, 1}, {6, 7}},
        {{2, 1, 3, 4, 5, 6, 7, 8}, {1, 0, 2, 3, 4, 5, 6, 7}},
    };
    for (const auto& way : waysToSayTheSame) {
        Sink sink;
        Arguments arguments{{}, way.named};
        for (const LONG value : way.values)
            arguments.values.push_back(number(value));
        EXPECT_EQ(notify(sink, 13, arguments), S_OK);
        EXPECT_EQ(sink.called, "12345678");
    }
}

TEST(Invoke, passesObjectsFlagsAndResults) {
    Sink sink;
    FakeDispatch object;
    VARIANT argument = number(0, VT_DISPATCH);
    argument.pdispVal = &object;
    EXPECT_EQ(notify(sink, 3, {{number(VARIANT_TRUE, VT_BOOL), argument}, {}}), S_OK);
    EXPECT_EQ(sink.called, "object 1 flag -1");
    EXPECT_EQ(object.references(), 1);

    Arguments reason{{number(3)}, {}};
    DISPPARAMS parameters = reason.parameters();
    VARIANT result = number(0);
    EXPECT_EQ(invoke(sink, 10, &parameters, &result), S_OK);
    EXPECT_EQ(sink.called, "reason 3");
    EXPECT_EQ(result.vt, VT_UI4);
    EXPECT_EQ(result.ulVal, 77u);
}

TEST(Invoke, refusesMalformedArgumentsWithoutACall) {
    const VARIANT one = number(1);
    const struct {
        const char* what;
        DISPID id;
        Arguments arguments;
        HRESULT expected;
    } cases[] = {
        {"too few", 3, {{one}, {}}, E_INVALIDARG},
        {"too many", 10, {{one, one}, {}}, E_INVALIDARG},
        {"nine where eight are taken", 13, {std::vector(9, one), {}}, E_INVALIDARG},
        {"named behind the last", 3, {{one, one}, {8}}, E_FAIL},
        {"negative name", 3, {{one, one}, {-3}}, E_FAIL},
        {"two for one position", 3, {{one, one}, {0, 0}}, E_INVALIDARG},
        {"named where a positional one goes", 3, {{one, one}, {0}}, E_INVALIDARG},
        {"named behind the parameters", 3, {{one, one}, {5}}, E_INVALIDARG},
        {"more names than arguments", 10, {{one}, {0, 0}}, E_INVALIDARG},
    };
    for (const auto& malformed : cases) {
        SCOPED_TRACE(malformed.what);
        Sink sink;
        EXPECT_EQ(notify(sink, malformed.id, malformed.arguments), malformed.expected);
        EXPECT_EQ(sink.called, "");
    }
}

TEST(Invoke, checksTheArgumentsOfKnownEventsAlone) {
    Sink sink;
    VARIANT one = number(1);
    DISPPARAMS noValues{nullptr, nullptr, 1, 0};
    DISPPARAMS noNames{&one, nullptr, 1, 1};
    for (DISPPARAMS* malformed : {static_cast<DISPPARAMS*>(nullptr), &noValues, &noNames}) {
        EXPECT_EQ(invoke(sink, 10, malformed), E_INVALIDARG);
        EXPECT_EQ(invoke(sink, 4, malformed), S_OK);
        EXPECT_EQ(invoke(sink, 15, malformed), S_OK);
    }
    EXPECT_EQ(sink.called, "");
}

TEST(Invoke, asksTheLocatorForAnEntryWithoutADescription) {
    Sink sink;
    EXPECT_EQ(invoke(sink, 14, nullptr), S_OK);
    EXPECT_EQ(sink.called, "");

    sink.located = &nineCall;
    EXPECT_EQ(notify(sink, 14, {std::vector(9, number(1)), {}}), E_FAIL);
    sink.located = &uncallable;
    EXPECT_EQ(notify(sink, 14, {}), E_INVALIDARG);
    EXPECT_EQ(sink.called, "");
    sink.located = &plainCall;
    EXPECT_EQ(notify(sink, 14, {}), S_OK);
    EXPECT_EQ(sink.called, "located");
}

/// Gives up its last owner from inside a notification.
class MortalSink final : public IDispEventSimpleImpl<0, MortalSink, &eventsId> {
public:
    explicit MortalSink(std::unique_ptr<MortalSink>& owner) : owner(owner) {}

    static SinkTable sinkTable() {
        static const SinkEntry table[] = {entry<&MortalSink::onLast, plainCall>(1)};
        return table;
    }

private:
    void onLast() { owner.reset(); }

    std::unique_ptr<MortalSink>& owner;
};

TEST(Invoke, survivesExceptionsAndTheEndOfItsSink) {
    Sink sink;
    EXPECT_EQ(notify(sink, 12, {}), S_OK);
    EXPECT_EQ(sink.called, "failure");

    std::unique_ptr<MortalSink> owner;
    owner = std::make_unique<MortalSink>(owner);
    DISPPARAMS none{};
    EXPECT_EQ(owner->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              S_OK);
    EXPECT_FALSE(owner);
}

TEST(Sink, answersToItsEventsAndIsNotCounted) {
    Sink sink;
    for (const IID& iid : {IID_IUnknown, IID_IDispatch, eventsId}) {
        void* found = nullptr;
        EXPECT_EQ(sink.QueryInterface(iid, &found), S_OK);
        EXPECT_EQ(found, static_cast<IDispatch*>(&sink));
    }
    void* found = &sink;
    EXPECT_EQ(sink.QueryInterface(otherId, &found), E_NOINTERFACE);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(sink.QueryInterface(IID_IUnknown, nullptr), E_POINTER);

    EXPECT_EQ(sink.Release(), 1u);
}

}  // namespace
