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

Value readCauseRemedy(IZrEventLogger4& logger, const EventReference& event, LCID language) {
    const GuidanceKeys& keys = guidanceKeys();
    const auto entries = receiveObject<IZrCauseRemedyCollection>([&](auto** collection) {
        return logger.GetCauseRemedy(event.eventClass, event.eventId, language, collection);
    });
    Value list(ValueType::vector);
    forEachItem<IZrCauseRemedy>(*entries, [&](const auto& item) {
        Value entry(ValueType::structure);
        entry.insert(keys.id, receiveText(&IZrCauseRemedy::get_Id, *item));
        entry.insert(keys.cause, receiveText(&IZrCauseRemedy::get_Cause, *item));
        entry.insert(keys.remedy, receiveText(&IZrCauseRemedy::get_Remedy, *item));
        list << std::move(entry);
    });
    return list;
}

Value readDetails(IZrEventLogger4& logger, const EventReference& event, LCID language) {
    const GuidanceKeys& keys = guidanceKeys();
    const auto details = receiveObject<IZrDetailCollection>([&](auto** collection) {
        return logger.GetDetails(event.eventClass, event.eventId, language, collection);
    });
    Value map(ValueType::structure);
    forEachItem<IZrDetail>(*details, [&](const auto& item) {
        Value entry(ValueType::structure);
        entry.insert(keys.text, receiveText(&IZrDetail::get_Text, *item));
        entry.insert(keys.comment, receiveText(&IZrDetail::get_Comment, *item));
        map.insert_or_update(Text(receiveText(&IZrDetail::get_Key, *item)), std::move(entry));
    });
    return map;
}

}  // namespace

Value readEventText(IZrEventLogger4& logger, const EventReference& event, LCID language) {
    return receiveText(&IZrEventLogger4::GetEventText, logger, event.eventClass, event.eventId,
                       dataOf(event.types), sizeOf(event.types), dataOf(event.data),
                       sizeOf(event.data), language);
}

Value readEventClassName(IZrEventLogger4& logger, const EventReference& event, LCID language) {
    return receiveText(&IZrEventLogger4::GetEventClassName, logger, event.eventClass, language);
}

Value readSourceName(IZrEventLogger4& logger, const EventReference& event, LCID language) {
    const ScopedBstr source(event.sourceName.view());
    ScopedBstr name;
    if (check(logger.GetSourceName(source.get(), language, name.put())) == S_FALSE)
        return {};
    // A translation without a character would hide the name.
    const std::string text = name.utf8();
    return text.empty() ? Value() : Value(text);
}

Value readGuidance(IZrEventLogger4& logger, const EventReference& event, LCID language) {
    Value guidance(ValueType::structure);
    if (Value list = readCauseRemedy(logger, event, language); !list.empty())
        guidance.insert(guidanceKeys().causeRemedy, std::move(list));
    if (Value map = readDetails(logger, event, language); !map.empty())
        guidance.insert(guidanceKeys().details, std::move(map));
    return guidance;
}

}  // namespace ZrHmiEventLogger
