#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Text.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace bridge_test {

namespace fnx = ZrEventLoggerFnxProxyLib;

/// A file time, given in seconds since 1970.
constexpr std::uint64_t at(std::int64_t seconds) {
    return static_cast<std::uint64_t>(116'444'736'000'000'000 + seconds * 10'000'000);
}
inline FILETIME toFileTime(std::uint64_t time) {
    return {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
}
inline VARIANT_BOOL toVariantBool(bool value) {
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}

/// What all calls of the fakes pass: tells the test, and fails one when the test wants it.
struct FakeBorder {
    std::function<void()> onCall = [] {};
    int goodCalls = -1;  ///< before the one that fails; none fails while negative
    int calls = 0;       ///< that could fail

    HRESULT enter() {
        ++calls;
        onCall();
        return goodCalls >= 0 && goodCalls-- == 0 ? E_ACCESSDENIED : S_OK;
    }
};

/// What a fake event says of itself.
struct FakeEventData {
    GUID eventClass{0x0000ABCD, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};
    ULONG eventId = 1;
    ULONG severity = 2;
    std::optional<ULONG> sourceId;
    std::optional<std::string> sourceName;
    std::optional<GUID> sourceGuid;
    std::optional<std::string> json;  ///< absent, as the three below: the interface is refused
    std::optional<fnx::ArgumentBlockLayout> layout;
    std::optional<ULONG> instanceId;
    std::optional<bool> isActive;
    std::vector<BYTE> block;
    ULONG argumentCount = 0;
    std::uint64_t raised = at(1);
    std::uint64_t cleared = 0;
    std::uint64_t confirmed = 0;
    ULONG confirmationState = 1;
    fnx::LoggedEventType type{};
    bool requiresConfirmation = false;
};

/// Automation interfaces of an object of the test's, with nothing behind what they share.
template <class... Interfaces>
class FakeDispatch : public Interfaces... {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

protected:
    ~FakeDispatch() = default;
};

/// A call that answers a value, unless the border fails it.
#define FAKE_GETTER(getter, Type, value)                         \
    HRESULT STDMETHODCALLTYPE getter(Type* into) override {      \
        return answer(into, [this]() -> Type { return value; }); \
    }

/// An event owned by the test, which counts the references to it: as an alarm, a message and a
/// logged event at once, whichever it is taken for.
class FakeEvent final
    : public FakeDispatch<fnx::IZrAlarm, fnx::IZrMessage, fnx::IZrLoggedEvent, fnx::IZrJsonAttribute>,
      public fnx::IZrEventArguments,
      public fnx::IZrEventInstance,
      public fnx::IZrLoggedEvent2 {
public:
    explicit FakeEvent(FakeBorder& border, FakeEventData data = {})
        : data(std::move(data)), border(border) {}
    FakeEvent(const FakeEvent&) = delete;
    FakeEvent& operator=(const FakeEvent&) = delete;

    FakeEventData data;
    std::function<HRESULT()> onConfirm = [] { return S_OK; };
    LONG references = 0;
    ULONG asked = 0;  ///< the parts of the source that were asked for, one octal digit each

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        offer<fnx::IZrJsonAttribute>(data.json.has_value(), iid, object);
        offer<fnx::IZrEventArguments>(data.layout.has_value(), iid, object);
        offer<fnx::IZrEventInstance>(data.instanceId.has_value(), iid, object);
        offer<fnx::IZrLoggedEvent2>(data.isActive.has_value(), iid, object);
        references += *object != nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        border.onCall();
        return static_cast<ULONG>(++references);
    }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }

    FAKE_GETTER(get_EventClass, GUID, data.eventClass)
    FAKE_GETTER(get_EventId, ULONG, data.eventId)
    FAKE_GETTER(get_Severity, ULONG, data.severity)
    FAKE_GETTER(get_SourceId, ULONG, data.sourceId.value())
    FAKE_GETTER(get_SourceGuid, GUID, data.sourceGuid.value())
    FAKE_GETTER(get_SourceName, BSTR, newBstr(data.sourceName.value()))
    FAKE_GETTER(get_TimeRaised, FILETIME, toFileTime(data.raised))
    FAKE_GETTER(get_TimeCleared, FILETIME, toFileTime(data.cleared))
    FAKE_GETTER(get_TimeConfirmed, FILETIME, toFileTime(data.confirmed))
    FAKE_GETTER(get_ConfirmationState, ULONG, data.confirmationState)
    FAKE_GETTER(get_ArgumentCount, ULONG, data.argumentCount)
    FAKE_GETTER(get_EventType, fnx::LoggedEventType, data.type)
    FAKE_GETTER(get_RequiresConfirmation, VARIANT_BOOL, toVariantBool(data.requiresConfirmation))
    FAKE_GETTER(get_JsonAttribute, BSTR, newBstr(data.json.value()))
    FAKE_GETTER(get_InstanceId, ULONG, data.instanceId.value())
    FAKE_GETTER(get_IsActive, VARIANT_BOOL, toVariantBool(data.isActive.value()))
    FAKE_GETTER(GetLayout, fnx::ArgumentBlockLayout, data.layout.value())

    HRESULT STDMETHODCALLTYPE HasSource(fnx::SourceAttribute kind, VARIANT_BOOL* value) override {
        asked = 8 * asked + static_cast<ULONG>(kind);
        const bool has = kind == fnx::SourceAttribute::id     ? data.sourceId.has_value()
                         : kind == fnx::SourceAttribute::name ? data.sourceName.has_value()
                                                              : data.sourceGuid.has_value();
        return answer(value, [has] { return toVariantBool(has); });
    }
    /// Fills as much as the block has.
    HRESULT STDMETHODCALLTYPE GetBlock(BYTE* buffer, ULONG size) override {
        std::copy_n(data.block.begin(), std::min<std::size_t>(size, data.block.size()), buffer);
        return border.enter();
    }
    HRESULT STDMETHODCALLTYPE get_Argument(ULONG, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Confirm() override { return onConfirm(); }

private:
    template <class Value, class Read>
    HRESULT answer(Value* into, Read read) {
        const HRESULT hr = border.enter();
        if (SUCCEEDED(hr))
            *into = read();
        return hr;
    }
    template <class Interface>
    void offer(bool has, REFIID iid, void** object) {
        if (has && iid == InterfaceId<Interface>::value())
            *object = static_cast<Interface*>(this);
    }

    FakeBorder& border;
};

#undef FAKE_GETTER

}  // namespace bridge_test
