#pragma once

#include <functional>
#include <vector>

#include "tests/events/FakeEvents.h"

namespace bridge_test {

/// Deletes itself with its last reference; the items belong to the test.
template <class Collection, class Item, class Fake>
class FakeCollection final : public WithoutDispatch<Collection> {
public:
    FakeCollection(FakeBorder& border, std::vector<Fake*> items)
        : border(border), items(std::move(items)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references;
        if (left == 0)
            delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE get_Count(ULONG* count) override {
        *count = static_cast<ULONG>(items.size());
        return border.enter();
    }
    HRESULT STDMETHODCALLTYPE get_Item(ULONG index, Item** item) override {
        const HRESULT hr = border.enter();
        if (SUCCEEDED(hr)) {
            *item = items.at(index);
            (*item)->AddRef();
        }
        return hr;
    }

private:
    ~FakeCollection() = default;

    FakeBorder& border;
    std::vector<Fake*> items;
    ULONG references = 1;
};

/// A logger that is on the stack, connected, and answers its two lists.
class FakeLogger final : public WithoutDispatch<ZrEventLoggerFnxProxyLib::IZrEventLogger4> {
    using IZrAlarmCollection = ZrEventLoggerFnxProxyLib::IZrAlarmCollection;
    using IZrLoggedEventCollection = ZrEventLoggerFnxProxyLib::IZrLoggedEventCollection;
    using IZrCauseRemedyCollection = ZrEventLoggerFnxProxyLib::IZrCauseRemedyCollection;
    using IZrDetailCollection = ZrEventLoggerFnxProxyLib::IZrDetailCollection;
    using IZrConnectionSettings = ZrEventLoggerFnxProxyLib::IZrConnectionSettings;

public:
    explicit FakeLogger(FakeBorder& border) : border(border) {}

    std::vector<FakeLoggedEvent*> logged;  ///< oldest first
    std::vector<FakeAlarm*> active;
    std::function<void()> betweenTheLists = [] {};
    std::function<void()> afterTheLists = [] {};

    HRESULT STDMETHODCALLTYPE GetLoggedEvents(ULONG count,
                                              IZrLoggedEventCollection** events) override {
        const std::size_t first = logged.size() - std::min<std::size_t>(count, logged.size());
        const std::vector newest(logged.begin() + static_cast<std::ptrdiff_t>(first), logged.end());
        const HRESULT hr =
            answer<IZrLoggedEventCollection, ZrEventLoggerFnxProxyLib::IZrLoggedEvent>(newest,
                                                                                       events);
        betweenTheLists();
        return hr;
    }
    HRESULT STDMETHODCALLTYPE GetActiveAlarms(IZrAlarmCollection** alarms) override {
        const HRESULT hr =
            answer<IZrAlarmCollection, ZrEventLoggerFnxProxyLib::IZrAlarm>(active, alarms);
        afterTheLists();
        return hr;
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
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
                                             IZrCauseRemedyCollection**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetDetails(REFGUID, ULONG, LCID, IZrDetailCollection**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE ConnectWithSettings(IZrConnectionSettings*, BSTR) override {
        return E_NOTIMPL;
    }

private:
    template <class Collection, class Item, class Fake>
    HRESULT answer(const std::vector<Fake*>& items, Collection** collection) {
        const HRESULT hr = border.enter();
        if (SUCCEEDED(hr))
            *collection = new FakeCollection<Collection, Item, Fake>(border, items);
        return hr;
    }

    FakeBorder& border;
};

}  // namespace bridge_test
