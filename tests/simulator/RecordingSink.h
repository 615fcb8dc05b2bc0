#pragma once

#include <condition_variable>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/Mutex.h"
#include "target/proxy/ComPtr.h"
#include "target/proxy/ZrEventLoggerFnxProxy.h"

/// Receives notifications and keeps each as a text such as "cleared 7 removed", where 7 is the
/// event id. Its reference count does not delete it, as with the sinks of real clients.
class RecordingSink final : public IDispatch {
public:
    using Alarm = ZrAtlCom::ComPtr<ZrEventLoggerFnxProxyLib::IZrAlarm>;

    /// Called in each notification, on the library's thread.
    std::function<void(const std::string&)> inside;

    /// All notifications so far, once there are `count` of them.
    std::vector<std::string> waitFor(std::size_t count);
    /// Notifications so far; further ones may be on their way.
    std::vector<std::string> received();
    /// The alarms that the notifications were about, in order.
    std::vector<Alarm> alarms();
    std::thread::id thread();
    void forget();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters,
                                     VARIANT*, EXCEPINFO*, UINT*) override;

private:
    /// Holds no reference of its own any more when others see the notification.
    void record(const std::string& text, Alarm alarm);

    Mutex mutex;
    std::condition_variable_any arrived;
    std::vector<std::string> texts GUARDED_BY(mutex);
    std::vector<Alarm> subjects GUARDED_BY(mutex);
    std::thread::id lastThread GUARDED_BY(mutex);
};
