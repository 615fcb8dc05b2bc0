#include "targetsystem/LoggerTexts.h"

#include "events/ProxyValue.h"
#include "targetsystem/proxy/ReceiveText.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::check;
using ZrAtlCom::ComPtr;
using ZrAtlCom::receiveText;
using ZrHmiSrv::Binary;
using ZrHmiSrv::Text;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

const GuidanceKeys& guidanceKeys() {
    static const GuidanceKeys keys;
    return keys;
}

namespace {

const BYTE* dataOf(const Binary& binary) {
    return reinterpret_cast<const BYTE*>(binary.bytes().data());
}

ULONG sizeOf(const Binary& binary) {
    return static_cast<ULONG>(binary.size());
}

/// The texts of one entry of a list.
template <class Item>
auto textsOf(const EventContext& context, Item& item) {
    return [&context, &item](HRESULT (STDMETHODCALLTYPE Item::*getter)(BSTR*)) {
        context.proceed();
        return receiveText(getter, item);
    };
}

Value readCauseRemedy(const EventContext& context, IZrEventLogger4& logger,
                      const EventReference& event, LCID language) {
    const GuidanceKeys& keys = guidanceKeys();
    const auto entries = context.receive<IZrCauseRemedyCollection>([&](auto** collection) {
        return logger.GetCauseRemedy(event.eventClass, event.eventId, language, collection);
    });
    Value list(ValueType::vector);
    context.forEach<IZrCauseRemedy>(*entries, [&](const auto& item) {
        const auto text = textsOf(context, *item);
        Value entry(ValueType::structure);
        entry.insert(keys.id, text(&IZrCauseRemedy::get_Id));
        entry.insert(keys.cause, text(&IZrCauseRemedy::get_Cause));
        entry.insert(keys.remedy, text(&IZrCauseRemedy::get_Remedy));
        list << std::move(entry);
    });
    return list;
}

Value readDetails(const EventContext& context, IZrEventLogger4& logger, const EventReference& event,
                  LCID language) {
    const GuidanceKeys& keys = guidanceKeys();
    const auto details = context.receive<IZrDetailCollection>([&](auto** collection) {
        return logger.GetDetails(event.eventClass, event.eventId, language, collection);
    });
    Value map(ValueType::structure);
    context.forEach<IZrDetail>(*details, [&](const auto& item) {
        const auto text = textsOf(context, *item);
        Value entry(ValueType::structure);
        entry.insert(keys.text, text(&IZrDetail::get_Text));
        entry.insert(keys.comment, text(&IZrDetail::get_Comment));
        map.insert_or_update(Text(text(&IZrDetail::get_Key)), std::move(entry));
    });
    return map;
}

}  // namespace

Value readEventText(const EventContext&, IZrEventLogger4& logger, const EventReference& event,
                    LCID language) {
    return receiveText(&IZrEventLogger4::GetEventText, logger, event.eventClass, event.eventId,
                       dataOf(event.types), sizeOf(event.types), dataOf(event.data),
                       sizeOf(event.data), language);
}

Value readEventClassName(const EventContext&, IZrEventLogger4& logger, const EventReference& event,
                         LCID language) {
    return receiveText(&IZrEventLogger4::GetEventClassName, logger, event.eventClass, language);
}

Value readSourceName(const EventContext&, IZrEventLogger4& logger, const EventReference& event,
                     LCID language) {
    const ScopedBstr source(event.sourceName.view());
    ScopedBstr name;
    if (check(logger.GetSourceName(source.get(), language, name.put())) == S_FALSE)
        return {};
    // A translation without a character would hide the name.
    const std::string text = name.utf8();
    return text.empty() ? Value() : Value(text);
}

Value readGuidance(const EventContext& context, IZrEventLogger4& logger,
                   const EventReference& event, LCID language) {
    Value guidance(ValueType::structure);
    if (Value list = readCauseRemedy(context, logger, event, language); !list.empty())
        guidance.insert(guidanceKeys().causeRemedy, std::move(list));
    if (Value map = readDetails(context, logger, event, language); !map.empty())
        guidance.insert(guidanceKeys().details, std::move(map));
    return guidance;
}

}  // namespace ZrHmiEventLogger
