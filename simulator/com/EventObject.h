#pragma once

#include <algorithm>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Mutex.h"
#include "simulator/com/RuntimeObject.h"
#include "simulator/plant/EventContent.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrSimulator {

/// In the place of a mutex for what never changes.
struct NoMutex {
    void lock() {}
    void unlock() {}
};

/// What alarms, messages and logged events have in common: an event that is read property by
/// property. `Native` is the mutex that it is read under.
template <class Native, class First, class... Others>
class EventObject : public RuntimeObject<First, ZrEventLoggerFnxProxyLib::IZrJsonAttribute,
                                         ZrEventLoggerFnxProxyLib::IZrEventArguments, Others...> {
    using Base = RuntimeObject<First, ZrEventLoggerFnxProxyLib::IZrJsonAttribute,
                               ZrEventLoggerFnxProxyLib::IZrEventArguments, Others...>;
    using SourceAttribute = ZrEventLoggerFnxProxyLib::SourceAttribute;

public:
    HRESULT STDMETHODCALLTYPE get_EventClass(GUID* eventClass) final {
        return readContent(Operation::EventClass, eventClass,
                           [](const EventContent& content) { return content.eventClass; });
    }
    HRESULT STDMETHODCALLTYPE get_EventId(ULONG* eventId) final {
        return readContent(Operation::EventId, eventId,
                           [](const EventContent& content) { return content.eventId; });
    }
    HRESULT STDMETHODCALLTYPE get_Severity(ULONG* severity) final {
        return readContent(Operation::Severity, severity,
                           [](const EventContent& content) { return content.severity; });
    }
    HRESULT STDMETHODCALLTYPE HasSource(SourceAttribute kind, VARIANT_BOOL* has) final {
        return readContent(Operation::HasSource, has, [kind](const EventContent& content) {
            return toVariantBool(hasSource(content.source, kind));
        });
    }
    HRESULT STDMETHODCALLTYPE get_SourceId(ULONG* id) final {
        return readContent(Operation::SourceId, id, [](const EventContent& content) {
            return content.source.id.value_or(0);
        });
    }
    HRESULT STDMETHODCALLTYPE get_SourceGuid(GUID* guid) final {
        return readContent(Operation::SourceGuid, guid, [](const EventContent& content) {
            return content.source.guid.value_or(GUID{});
        });
    }
    HRESULT STDMETHODCALLTYPE get_SourceName(BSTR* name) final {
        return readContent(Operation::SourceName, name, [](const EventContent& content) {
            return newBstr(textOf(content.source.name));
        });
    }
    HRESULT STDMETHODCALLTYPE get_TimeRaised(FILETIME* time) final {
        return readRecord(Operation::TimeRaised, time,
                          [](const EventRecord& event) { return toFiletime(event.raised); });
    }
    HRESULT STDMETHODCALLTYPE get_JsonAttribute(BSTR* json) final {
        return readContent(Operation::JsonAttribute, json, [](const EventContent& content) {
            return newBstr(textOf(content.json));
        });
    }

    HRESULT STDMETHODCALLTYPE
    GetLayout(ZrEventLoggerFnxProxyLib::ArgumentBlockLayout* layout) final {
        return readContent(Operation::Arguments, layout, [](const EventContent& content) {
            const auto typesSize = static_cast<LONG>(content.block.types.size());
            const auto dataSize = static_cast<LONG>(content.block.data.size());
            return ZrEventLoggerFnxProxyLib::ArgumentBlockLayout{
                static_cast<LONG>(content.arguments.size()), 0, typesSize, typesSize, dataSize};
        });
    }
    HRESULT STDMETHODCALLTYPE GetBlock(BYTE* buffer, ULONG size) final {
        return catchToResult([&]() -> HRESULT {
            if (!buffer)
                return E_POINTER;
            if (const auto answer = this->border->enter(Operation::Arguments))
                return *answer;
            return look([&](const EventRecord& event) -> HRESULT {
                const auto& [types, data] = event.content->block;
                if (size < types.size() + data.size())
                    return E_INVALIDARG;
                std::copy(data.begin(), data.end(), std::copy(types.begin(), types.end(), buffer));
                return S_OK;
            });
        });
    }

protected:
    EventObject(std::shared_ptr<Border> border, EventRecord event)
        : Base(std::move(border)), current(std::move(event)) {}

    /// What the object says of its event now.
    EventRecord record() const {
        return look([](const EventRecord& event) { return event; });
    }
    void setRecord(EventRecord event) {
        Lock lock(mutex);
        std::swap(current, event);
    }
    /// A call that reads one value of the event; `get` copies it out and does nothing else.
    template <class Value, class Get>
    HRESULT readRecord(Operation operation, Value* value, Get get) {
        return this->read(operation, value, [&] { return look(get); });
    }
    template <class Value, class Get>
    HRESULT readContent(Operation operation, Value* value, Get get) {
        return readRecord(operation, value,
                          [&](const EventRecord& event) { return get(*event.content); });
    }

    bool offers(REFIID iid) const final {
        if (iid == InterfaceId<ZrEventLoggerFnxProxyLib::IZrEventInstance>::value())
            return look([](const EventRecord& event) { return event.instanceId != 0; });
        return iid != InterfaceId<ZrEventLoggerFnxProxyLib::IZrJsonAttribute>::value() ||
               look([](const EventRecord& event) { return event.content->json.has_value(); });
    }

    HRESULT readArgumentCount(ULONG* count) {
        return readContent(Operation::Arguments, count, [](const EventContent& content) {
            return static_cast<ULONG>(content.arguments.size());
        });
    }
    HRESULT readArgument(ULONG index, VARIANT* argument) {
        return catchToResult([&]() -> HRESULT {
            if (!argument)
                return E_POINTER;
            VariantInit(argument);
            if (const auto answer = this->border->enter(Operation::Arguments))
                return *answer;
            return look([&](const EventRecord& event) -> HRESULT {
                if (index >= event.content->arguments.size())
                    return DISP_E_BADINDEX;
                *argument = toVariant(event.content->arguments[index]);
                return S_OK;
            });
        });
    }

private:
    static bool hasSource(const EventSource& source, SourceAttribute kind) {
        switch (kind) {
            case SourceAttribute::id:
                return source.id.has_value();
            case SourceAttribute::guid:
                return source.guid.has_value();
            case SourceAttribute::name:
                return source.name.has_value();
        }
        return false;
    }
    static std::string_view textOf(const std::optional<std::string>& text) {
        return text ? std::string_view(*text) : std::string_view();
    }

    template <class Look>
    auto look(Look look) const {
        Lock lock(mutex);
        return look(current);
    }

    mutable AnnotatedMutex<Native> mutex;
    EventRecord current GUARDED_BY(mutex);
};

}  // namespace ZrSimulator
