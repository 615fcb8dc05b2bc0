#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Text.h"
#include "target/proxy/ZrEventLoggerFnxProxy.h"

namespace bridge_test {

/// A file time, given in seconds since 1970.
constexpr std::uint64_t at(std::int64_t seconds) {
    return static_cast<std::uint64_t>(116'444'736'000'000'000 + seconds * 10'000'000);
}

/// What all calls of the fakes pass: tells the test, and fails one when the test wants it.
struct FakeBorder {
    std::function<void()> onCall = [] {};
    int goodCalls = -1;  ///< before the one that fails; none fails while negative
    HRESULT failure = E_ACCESSDENIED;

    HRESULT enter() {
        onCall();
        return goodCalls >= 0 && goodCalls-- == 0 ? failure : S_OK;
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
    std::optional<ZrEventLoggerFnxProxyLib::ArgumentBlockLayout> layout;
    std::optional<ULONG> instanceId;
    std::optional<bool> isActive;
    std::vector<BYTE> block;
    ULONG argumentCount = 0;
    std::uint64_t raised = at(1);
    std::uint64_t cleared = 0;
    std::uint64_t confirmed = 0;
    ULONG confirmationState = 1;
    ZrEventLoggerFnxProxyLib::LoggedEventType type{};
    bool requiresConfirmation = false;
};

/// Automation interfaces without their dispatch half.
template <class... Interfaces>
class WithoutDispatch : public Interfaces... {
public:
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
    ~WithoutDispatch() = default;
};

/// An event owned by the test, which counts the references to it.
template <class Interface>
class FakeEvent : public WithoutDispatch<Interface, ZrEventLoggerFnxProxyLib::IZrJsonAttribute>,
                  public ZrEventLoggerFnxProxyLib::IZrEventArguments,
                  public ZrEventLoggerFnxProxyLib::IZrEventInstance,
                  public ZrEventLoggerFnxProxyLib::IZrLoggedEvent2 {
    using IZrEventArguments = ZrEventLoggerFnxProxyLib::IZrEventArguments;
    using IZrEventInstance = ZrEventLoggerFnxProxyLib::IZrEventInstance;
    using IZrJsonAttribute = ZrEventLoggerFnxProxyLib::IZrJsonAttribute;
    using IZrLoggedEvent2 = ZrEventLoggerFnxProxyLib::IZrLoggedEvent2;
    using SourceAttribute = ZrEventLoggerFnxProxyLib::SourceAttribute;

public:
    explicit FakeEvent(FakeBorder& border, FakeEventData data = {})
        : data(std::move(data)), border(border) {}
    FakeEvent(const FakeEvent&) = delete;
    FakeEvent& operator=(const FakeEvent&) = delete;

    FakeEventData data;
    LONG references = 0;
    ULONG asked = 0;  ///< the parts of the source that were asked for, one octal digit each

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = offer(iid);
        references += *object != nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        border.onCall();
        return static_cast<ULONG>(++references);
    }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }

    HRESULT STDMETHODCALLTYPE get_EventClass(GUID* value) override {
        return answer(value, data.eventClass);
    }
    HRESULT STDMETHODCALLTYPE get_EventId(ULONG* value) override {
        return answer(value, data.eventId);
    }
    HRESULT STDMETHODCALLTYPE get_Severity(ULONG* value) override {
        return answer(value, data.severity);
    }
    HRESULT STDMETHODCALLTYPE HasSource(SourceAttribute kind, VARIANT_BOOL* value) override {
        asked = 8 * asked + static_cast<ULONG>(kind);
        const bool has = kind == SourceAttribute::id     ? data.sourceId.has_value()
                         : kind == SourceAttribute::name ? data.sourceName.has_value()
                                                         : data.sourceGuid.has_value();
        return answer(value, toVariantBool(has));
    }
    HRESULT STDMETHODCALLTYPE get_SourceId(ULONG* value) override {
        return answer(value, data.sourceId.value());
    }
    HRESULT STDMETHODCALLTYPE get_SourceGuid(GUID* value) override {
        return answer(value, data.sourceGuid.value());
    }
    HRESULT STDMETHODCALLTYPE get_SourceName(BSTR* value) override {
        return answerText(value, data.sourceName);
    }
    HRESULT STDMETHODCALLTYPE get_TimeRaised(FILETIME* value) override {
        return answer(value, toFileTime(data.raised));
    }
    HRESULT STDMETHODCALLTYPE get_JsonAttribute(BSTR* value) override {
        return answerText(value, data.json);
    }
    HRESULT STDMETHODCALLTYPE
    GetLayout(ZrEventLoggerFnxProxyLib::ArgumentBlockLayout* value) override {
        return answer(value, data.layout.value());
    }
    /// Fills as much as the block has.
    HRESULT STDMETHODCALLTYPE GetBlock(BYTE* buffer, ULONG size) override {
        const HRESULT hr = border.enter();
        if (SUCCEEDED(hr))
            std::copy_n(data.block.begin(), std::min<std::size_t>(size, data.block.size()), buffer);
        return hr;
    }
    HRESULT STDMETHODCALLTYPE get_InstanceId(ULONG* value) override {
        return answer(value, data.instanceId.value());
    }
    HRESULT STDMETHODCALLTYPE get_IsActive(VARIANT_BOOL* value) override {
        return answer(value, toVariantBool(data.isActive.value()));
    }

protected:
    ~FakeEvent() = default;

    static FILETIME toFileTime(std::uint64_t time) {
        return {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
    }
    static VARIANT_BOOL toVariantBool(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }
    template <class Value>
    HRESULT answer(Value* into, const Value& value) {
        const HRESULT hr = border.enter();
        if (SUCCEEDED(hr))
            *into = value;
        return hr;
    }

    FakeBorder& border;

private:
    HRESULT answerText(BSTR* into, const std::optional<std::string>& text) {
        const HRESULT hr = border.enter();
        if (SUCCEEDED(hr))
            *into = newBstr(text.value());
        return hr;
    }
    void* offer(REFIID iid) {
        const auto as = [&]<class I>(bool offered, I* self) -> void* {
            return offered && iid == InterfaceId<I>::value() ? self : nullptr;
        };
        for (void* found : {as(data.json.has_value(), static_cast<IZrJsonAttribute*>(this)),
                            as(data.layout.has_value(), static_cast<IZrEventArguments*>(this)),
                            as(data.instanceId.has_value(), static_cast<IZrEventInstance*>(this)),
                            as(data.isActive.has_value(), static_cast<IZrLoggedEvent2*>(this))})
            if (found)
                return found;
        return nullptr;
    }
};

class FakeMessage final : public FakeEvent<ZrEventLoggerFnxProxyLib::IZrMessage> {
public:
    using FakeEvent::FakeEvent;
    HRESULT STDMETHODCALLTYPE get_ArgumentCount(ULONG* value) override {
        return answer(value, data.argumentCount);
    }
    HRESULT STDMETHODCALLTYPE get_Argument(ULONG, VARIANT*) override { return E_NOTIMPL; }
};

class FakeAlarm final : public FakeEvent<ZrEventLoggerFnxProxyLib::IZrAlarm> {
public:
    using FakeEvent::FakeEvent;
    std::function<HRESULT()> onConfirm = [] { return S_OK; };

    HRESULT STDMETHODCALLTYPE get_ArgumentCount(ULONG* value) override {
        return answer(value, data.argumentCount);
    }
    HRESULT STDMETHODCALLTYPE get_Argument(ULONG, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_TimeCleared(FILETIME* value) override {
        return answer(value, toFileTime(data.cleared));
    }
    HRESULT STDMETHODCALLTYPE get_ConfirmationState(ULONG* value) override {
        return answer(value, data.confirmationState);
    }
    HRESULT STDMETHODCALLTYPE Confirm() override { return onConfirm(); }
    HRESULT STDMETHODCALLTYPE get_TimeConfirmed(FILETIME* value) override {
        return answer(value, toFileTime(data.confirmed));
    }
};

class FakeLoggedEvent final : public FakeEvent<ZrEventLoggerFnxProxyLib::IZrLoggedEvent> {
public:
    using FakeEvent::FakeEvent;
    HRESULT STDMETHODCALLTYPE
    get_EventType(ZrEventLoggerFnxProxyLib::LoggedEventType* value) override {
        return answer(value, data.type);
    }
    HRESULT STDMETHODCALLTYPE get_RequiresConfirmation(VARIANT_BOOL* value) override {
        return answer(value, toVariantBool(data.requiresConfirmation));
    }
    HRESULT STDMETHODCALLTYPE get_TimeCleared(FILETIME* value) override {
        return answer(value, toFileTime(data.cleared));
    }
    HRESULT STDMETHODCALLTYPE get_TimeConfirmed(FILETIME* value) override {
        return answer(value, toFileTime(data.confirmed));
    }
};

}  // namespace bridge_test
