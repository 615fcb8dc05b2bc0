#pragma once

#include "tests/events/FakeEvent.h"

namespace bridge_test {

/// The logger's own, as its items are the test's.
template <class Collection, class Item>
class FakeCollection final : public FakeDispatch<Collection> {
public:
    explicit FakeCollection(FakeBorder& border) : border(border) {}

    std::vector<FakeEvent*> items;

    HRESULT STDMETHODCALLTYPE get_Count(ULONG* count) override {
        *count = static_cast<ULONG>(items.size());
        return border.enter();
    }
    HRESULT STDMETHODCALLTYPE get_Item(ULONG index, Item** item) override {
        items.at(index)->AddRef();
        *item = items[index];
        return border.enter();
    }

private:
    FakeBorder& border;
};

/// A logger that is on the stack, connected, and answers its two lists.
class FakeLogger final : public FakeDispatch<fnx::IZrEventLogger4> {
public:
    explicit FakeLogger(FakeBorder& border) : border(border) {}

    std::vector<FakeEvent*> logged;  ///< oldest first
    std::vector<FakeEvent*> active;
    std::function<void()> betweenTheLists = [] {};
    std::function<void()> afterTheLists = [] {};

    HRESULT STDMETHODCALLTYPE GetLoggedEvents(ULONG count,
                                              fnx::IZrLoggedEventCollection** events) override {
        const auto asked = std::min<std::ptrdiff_t>(count, std::ssize(logged));
        newest.items.assign(logged.end() - asked, logged.end());
        *events = &newest;
        betweenTheLists();
        return border.enter();
    }
    HRESULT STDMETHODCALLTYPE GetActiveAlarms(fnx::IZrAlarmCollection** alarms) override {
        listed.items = active;
        *alarms = &listed;
        afterTheLists();
        return border.enter();
    }

    HRESULT STDMETHODCALLTYPE Connect(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Disconnect() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_IsConnected(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ClearLoggedEvents() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetEventText(REFGUID, ULONG, const BYTE*, ULONG, const BYTE*, ULONG,
                                           LCID, BSTR*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetEventClassName(REFGUID, LCID, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSourceName(BSTR, LCID, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetCauseRemedy(REFGUID, ULONG, LCID,
                                             fnx::IZrCauseRemedyCollection**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetDetails(REFGUID, ULONG, LCID,
                                         fnx::IZrDetailCollection**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE ConnectWithSettings(fnx::IZrConnectionSettings*, BSTR) override {
        return E_NOTIMPL;
    }

private:
    FakeBorder& border;
    FakeCollection<fnx::IZrLoggedEventCollection, fnx::IZrLoggedEvent> newest{border};
    FakeCollection<fnx::IZrAlarmCollection, fnx::IZrAlarm> listed{border};
};

}  // namespace bridge_test
