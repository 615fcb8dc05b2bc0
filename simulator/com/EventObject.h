#pragma once

#include <cstring>

#include "simulator/com/RuntimeObject.h"
#include "simulator/plant/EventContent.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrSimulator {

/// What alarms, messages and logged events have in common.
template <class First, class... Others>
class EventObject : public RuntimeObject<First, ZrEventLoggerFnxProxyLib::IZrJsonAttribute,
                                         ZrEventLoggerFnxProxyLib::IZrEventArguments, Others...> {
    using Base = RuntimeObject<First, ZrEventLoggerFnxProxyLib::IZrJsonAttribute,
                               ZrEventLoggerFnxProxyLib::IZrEventArguments, Others...>;
    using SourceAttribute = ZrEventLoggerFnxProxyLib::SourceAttribute;

public:
    HRESULT STDMETHODCALLTYPE get_EventClass(GUID* eventClass) final {
        return read(Operation::EventClass, eventClass,
                    [&] { return record().content->eventClass; });
    }
    HRESULT STDMETHODCALLTYPE get_EventId(ULONG* eventId) final {
        return read(Operation::EventId, eventId, [&] { return record().content->eventId; });
    }
    HRESULT STDMETHODCALLTYPE get_Severity(ULONG* severity) final {
        return read(Operation::Severity, severity, [&] { return record().content->severity; });
    }
    HRESULT STDMETHODCALLTYPE HasSource(SourceAttribute kind, VARIANT_BOOL* has) final {
        return read(Operation::HasSource, has,
                    [&] { return toVariantBool(hasSource(record().content->source, kind)); });
    }
    HRESULT STDMETHODCALLTYPE get_SourceId(ULONG* id) final {
        return read(Operation::SourceId, id,
                    [&] { return record().content->source.id.value_or(0); });
    }
    HRESULT STDMETHODCALLTYPE get_SourceGuid(GUID* guid) final {
        return read(Operation::SourceGuid, guid,
                    [&] { return record().content->source.guid.value_or(GUID{}); });
    }
    HRESULT STDMETHODCALLTYPE get_SourceName(BSTR* name) final {
        return read(Operation::SourceName, name,
                    [&] { return newBstr(record().content->source.name.value_or("")); });
    }
    HRESULT STDMETHODCALLTYPE get_TimeRaised(FILETIME* time) final {
        return read(Operation::TimeRaised, time, [&] { return toFiletime(record().raised); });
    }
    HRESULT STDMETHODCALLTYPE get_JsonAttribute(BSTR* json) final {
        return read(Operation::JsonAttribute, json,
                    [&] { return newBstr(record().content->json.value_or("")); });
    }

    HRESULT STDMETHODCALLTYPE
    GetLayout(ZrEventLoggerFnxProxyLib::ArgumentBlockLayout* layout) final {
        return read(Operation::Arguments, layout, [&] {
            const auto content = record().content;
            const auto typesSize = static_cast<LONG>(content->block.types.size());
            const auto dataSize = static_cast<LONG>(content->block.data.size());
            return ZrEventLoggerFnxProxyLib::ArgumentBlockLayout{
                static_cast<LONG>(content->arguments.size()), 0, typesSize, typesSize, dataSize};
        });
    }
    HRESULT STDMETHODCALLTYPE GetBlock(BYTE* buffer, ULONG size) final {
        return catchToResult([&]() -> HRESULT {
            if (!buffer)
                return E_POINTER;
            if (const auto answer = this->border->enter(Operation::Arguments))
                return *answer;
            const auto content = record().content;
            const auto& [types, data] = content->block;
            if (size < types.size() + data.size())
                return E_INVALIDARG;
            std::copy(data.begin(), data.end(), std::copy(types.begin(), types.end(), buffer));
            return S_OK;
        });
    }

protected:
    using Base::Base;
    using Base::read;

    /// What the object says of its event now.
    virtual EventRecord record() const = 0;

    bool offers(REFIID iid) const final {
        if (iid == InterfaceId<ZrEventLoggerFnxProxyLib::IZrEventInstance>::value())
            return record().instanceId != 0;
        return iid != InterfaceId<ZrEventLoggerFnxProxyLib::IZrJsonAttribute>::value() ||
               record().content->json.has_value();
    }

    HRESULT readArgumentCount(ULONG* count) {
        return read(Operation::Arguments, count,
                    [&] { return static_cast<ULONG>(record().content->arguments.size()); });
    }
    HRESULT readArgument(ULONG index, VARIANT* argument) {
        return catchToResult([&]() -> HRESULT {
            if (!argument)
                return E_POINTER;
            VariantInit(argument);
            if (const auto answer = this->border->enter(Operation::Arguments))
                return *answer;
            const auto content = record().content;
            if (index >= content->arguments.size())
                return DISP_E_BADINDEX;
            *argument = toVariant(content->arguments[index]);
            return S_OK;
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
};

}  // namespace ZrSimulator
