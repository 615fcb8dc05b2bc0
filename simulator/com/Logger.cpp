#include "simulator/com/Logger.h"

#include <span>

#include "platform/Text.h"
#include "simulator/com/CauseRemedyItem.h"
#include "simulator/com/Collection.h"
#include "simulator/com/DetailItem.h"
#include "simulator/com/LoggedEvent.h"
#include "simulator/runtime/ProtocolError.h"

namespace ZrSimulator {

using namespace ZrEventLoggerFnxProxyLib;

namespace {

std::string textOf(BSTR text) {
    return toUtf8(Utf16View(text, SysStringLen(text)));
}

HRESULT answerText(const std::string& text, BSTR* result) {
    *result = newBstr(text);
    return S_OK;
}

/// Hands out a collection of objects.
template <class Item, class Interface, class Object>
HRESULT answerCollection(const Runtime& runtime, std::vector<Ref<Object>> objects,
                         Interface** result) {
    using Objects = Collection<Interface, Item, Object>;
    return handOut(Ref<Objects>(new Objects(runtime.clientBorder(), std::move(objects))), result);
}

/// Makes an object of each entry, in the language `lcid`.
template <class Object, class Entry>
std::vector<Ref<Object>> inLanguage(const Runtime& runtime, const std::vector<Entry>& entries,
                                    LCID lcid) {
    std::vector<Ref<Object>> objects;
    for (const auto& entry : entries)
        objects.push_back(new Object(runtime.clientBorder(), entry, lcid));
    return objects;
}

std::optional<Arguments> decodeArguments(const BYTE* types, ULONG typesSize, const BYTE* data,
                                         ULONG dataSize) {
    if ((!types && typesSize != 0) || (!data && dataSize != 0))
        return std::nullopt;
    return decode(std::span(types, typesSize), std::span(data, dataSize));
}

}  // namespace

Logger::Logger(Simulator& simulator) : loggerLink(simulator), notifications(*this) {}

HRESULT Logger::Connect(BSTR netId) {
    return catchToResult([&] { return connect(Operation::Connect, netId, false); });
}

HRESULT Logger::ConnectWithSettings(IZrConnectionSettings* settings, BSTR netId) {
    return catchToResult([&]() -> HRESULT {
        if (!settings)
            return E_POINTER;
        VARIANT_BOOL preload = VARIANT_FALSE;
        if (const HRESULT hr = settings->get_PreloadTranslations(&preload); FAILED(hr))
            return hr;
        return connect(Operation::ConnectWithSettings, netId, preload != VARIANT_FALSE);
    });
}

HRESULT Logger::connect(Operation operation, BSTR netId, bool preloadTranslations) {
    const auto target = parseNetId(textOf(netId));
    return target ? loggerLink.connect(operation, *target, preloadTranslations) : E_INVALIDARG;
}

HRESULT Logger::Disconnect() {
    return catchToResult([&]() -> HRESULT {
        if (const auto answer = loggerLink.enter(Operation::Disconnect))
            return *answer;
        loggerLink.disconnect();
        return S_OK;
    });
}

HRESULT Logger::get_IsConnected(VARIANT_BOOL* connected) {
    return catchToResult([&]() -> HRESULT {
        if (!connected)
            return E_POINTER;
        *connected = VARIANT_FALSE;
        if (const auto answer = loggerLink.enter(Operation::IsConnected))
            return *answer;
        *connected = toVariantBool(loggerLink.runtime() != nullptr);
        return S_OK;
    });
}

template <class Result, class Ask>
HRESULT Logger::query(Operation operation, Result** result, Ask ask) {
    return catchToResult([&]() -> HRESULT {
        if (!result)
            return E_POINTER;
        *result = nullptr;
        if (const auto answer = loggerLink.enter(operation))
            return *answer;
        const auto runtime = loggerLink.runtime();
        return runtime ? ask(*runtime) : portNotOpen;
    });
}

HRESULT Logger::GetActiveAlarms(IZrAlarmCollection** alarms) {
    return query(Operation::GetActiveAlarms, alarms, [&](Runtime& runtime) {
        return answerCollection<IZrAlarm>(runtime, runtime.activeAlarms(), alarms);
    });
}

HRESULT Logger::ClearLoggedEvents() {
    return catchToResult([&]() -> HRESULT {
        if (const auto answer = loggerLink.enter(Operation::ClearLoggedEvents))
            return *answer;
        const auto runtime = loggerLink.runtime();
        if (!runtime)
            return portNotOpen;
        runtime->clearLoggedEvents();
        return S_OK;
    });
}

HRESULT Logger::GetLoggedEvents(ULONG count, IZrLoggedEventCollection** events) {
    return query(Operation::GetLoggedEvents, events, [&](Runtime& runtime) {
        auto records = runtime.loggedEvents(count);
        std::vector<Ref<LoggedEvent>> objects;
        objects.reserve(records.size());
        for (auto& record : records)
            objects.push_back(new LoggedEvent(runtime.clientBorder(), std::move(record)));
        return answerCollection<IZrLoggedEvent>(runtime, std::move(objects), events);
    });
}

HRESULT Logger::GetEventText(REFGUID eventClass, ULONG eventId, const BYTE* types, ULONG typesSize,
                             const BYTE* data, ULONG dataSize, LCID lcid, BSTR* text) {
    return query(Operation::GetEventText, text, [&](Runtime& runtime) {
        const auto arguments = decodeArguments(types, typesSize, data, dataSize);
        if (!arguments)
            return E_INVALIDARG;
        const auto* event = runtime.catalog().findEvent(eventClass, eventId);
        return event ? answerText(formatText(event->text.inLanguage(lcid), *arguments), text)
                     : notFound;
    });
}

HRESULT Logger::GetEventClassName(REFGUID eventClass, LCID lcid, BSTR* name) {
    return query(Operation::GetEventClassName, name, [&](Runtime& runtime) {
        const auto* found = runtime.catalog().findClass(eventClass);
        return found ? answerText(found->name.inLanguage(lcid), name) : notFound;
    });
}

HRESULT Logger::GetSourceName(BSTR source, LCID lcid, BSTR* name) {
    return query(Operation::GetSourceName, name, [&](Runtime& runtime) {
        const auto* found = runtime.catalog().findSource(textOf(source), lcid);
        return found ? answerText(*found, name) : S_FALSE;
    });
}

HRESULT Logger::GetCauseRemedy(REFGUID eventClass, ULONG eventId, LCID lcid,
                               IZrCauseRemedyCollection** entries) {
    return query(Operation::GetCauseRemedy, entries, [&](Runtime& runtime) {
        const auto* event = runtime.catalog().findEvent(eventClass, eventId);
        return event ? answerCollection<IZrCauseRemedy>(
                           runtime, inLanguage<CauseRemedyItem>(runtime, event->causeRemedy, lcid),
                           entries)
                     : notFound;
    });
}

HRESULT Logger::GetDetails(REFGUID eventClass, ULONG eventId, LCID lcid,
                           IZrDetailCollection** details) {
    return query(Operation::GetDetails, details, [&](Runtime& runtime) {
        const auto* event = runtime.catalog().findEvent(eventClass, eventId);
        return event ? answerCollection<IZrDetail>(
                           runtime, inLanguage<DetailItem>(runtime, event->details, lcid), details)
                     : notFound;
    });
}

HRESULT Logger::get_Timeout(ULONG* milliseconds) {
    return readPlain(milliseconds, [&] { return loggerLink.timeout(); });
}

HRESULT Logger::put_Timeout(ULONG milliseconds) {
    return catchToResult([&]() -> HRESULT {
        if (const auto answer = loggerLink.enter(Operation::SetTimeout))
            return *answer;
        loggerLink.setTimeout(milliseconds);
        return S_OK;
    });
}

HRESULT Logger::EnumConnectionPoints(IEnumConnectionPoints**) {
    return E_NOTIMPL;
}

HRESULT Logger::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
    if (!point)
        return E_POINTER;
    *point = nullptr;
    if (const auto answer = loggerLink.enter(Operation::FindConnectionPoint))
        return *answer;
    if (iid != IID__IZrEventLoggerEvents)
        return CONNECT_E_NOCONNECTION;
    *point = &notifications;
    AddRef();
    return S_OK;
}

}  // namespace ZrSimulator
