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

namespace keys {
const Text causeRemedy("causeRemedy");
const Text details("details");
}  // namespace keys

namespace {

const Text idKey("id");
const Text causeKey("cause");
const Text remedyKey("remedy");
const Text textKey("text");
const Text commentKey("comment");

const BYTE* dataOf(const Binary& binary) {
    return reinterpret_cast<const BYTE*>(binary.bytes().data());
}

ULONG sizeOf(const Binary& binary) {
    return static_cast<ULONG>(binary.size());
}

Value readCauseRemedy(IZrEventLogger4& logger, const EventReference& event, LCID language) {
    const auto entries = receiveObject<IZrCauseRemedyCollection>([&](auto** collection) {
        return logger.GetCauseRemedy(event.eventClass, event.eventId, language, collection);
    });
    Value list(ValueType::vector);
    forEachItem<IZrCauseRemedy>(*entries, [&list](const auto& item) {
        Value entry(ValueType::structure);
        entry.insert(idKey, receiveText(&IZrCauseRemedy::get_Id, *item));
        entry.insert(causeKey, receiveText(&IZrCauseRemedy::get_Cause, *item));
        entry.insert(remedyKey, receiveText(&IZrCauseRemedy::get_Remedy, *item));
        list << std::move(entry);
    });
    return list;
}

Value readDetails(IZrEventLogger4& logger, const EventReference& event, LCID language) {
    const auto details = receiveObject<IZrDetailCollection>([&](auto** collection) {
        return logger.GetDetails(event.eventClass, event.eventId, language, collection);
    });
    Value map(ValueType::structure);
    forEachItem<IZrDetail>(*details, [&map](const auto& item) {
        Value entry(ValueType::structure);
        entry.insert(textKey, receiveText(&IZrDetail::get_Text, *item));
        entry.insert(commentKey, receiveText(&IZrDetail::get_Comment, *item));
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
    return name.utf8();
}

Value readGuidance(IZrEventLogger4& logger, const EventReference& event, LCID language) {
    Value guidance(ValueType::structure);
    if (Value list = readCauseRemedy(logger, event, language); !list.empty())
        guidance.insert(keys::causeRemedy, std::move(list));
    if (Value map = readDetails(logger, event, language); !map.empty())
        guidance.insert(keys::details, std::move(map));
    return guidance;
}

}  // namespace ZrHmiEventLogger
