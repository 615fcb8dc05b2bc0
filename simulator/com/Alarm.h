#pragma once

#include <string>

#include "simulator/com/EventObject.h"

namespace ZrSimulator {

class Runtime;

/// An alarm for all its life and for as long as anyone refers to it: raised again it stays the
/// same object. What it says is always the runtime's last word; it takes no connection to read it.
class Alarm final : public EventObject<std::mutex, ZrEventLoggerFnxProxyLib::IZrAlarm,
                                       ZrEventLoggerFnxProxyLib::IZrEventInstance> {
public:
    Alarm(std::shared_ptr<Border> border, std::weak_ptr<Runtime> runtime, std::string name,
          EventRecord record);

    /// As the engineer calls it.
    const std::string& name() const { return alarmName; }
    using EventObject::record;
    void update(EventRecord record) { setRecord(std::move(record)); }

    HRESULT STDMETHODCALLTYPE get_ArgumentCount(ULONG* count) override;
    HRESULT STDMETHODCALLTYPE get_Argument(ULONG index, VARIANT* argument) override;
    HRESULT STDMETHODCALLTYPE get_TimeCleared(FILETIME* time) override;
    HRESULT STDMETHODCALLTYPE get_ConfirmationState(ULONG* state) override;
    /// S_FALSE when there is nothing (more) to confirm.
    HRESULT STDMETHODCALLTYPE Confirm() override;
    HRESULT STDMETHODCALLTYPE get_TimeConfirmed(FILETIME* time) override;
    HRESULT STDMETHODCALLTYPE get_InstanceId(ULONG* id) override;

private:
    const std::weak_ptr<Runtime> runtime;
    const std::string alarmName;
};

}  // namespace ZrSimulator
