#include "localization/EventLocalizer.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "events/EventParameters.h"
#include "localization/LocaleNames.h"
#include "targetsystem/LoggerTexts.h"
#include "targetsystem/proxy/Guid.h"

using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ILocalizable;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::String;
using ZrHmiSrv::Text;
using ZrHmiSrv::Value;

namespace ZrHmiEventLogger {

namespace {

constexpr std::size_t localizedParameterCount = 4;

/// What is known of an event in the client's language.
struct LocalizedTexts {
    Value eventText;
    Value eventClassName;
    Value sourceName;
    Value guidance;
};

bool isSupported(ILocalizable::Kind kind) {
    return kind == ILocalizable::Kind::alarm || kind == ILocalizable::Kind::message;
}

const Value& parameter(const Value& parameters, const Text& key) {
    static const Value unset;
    const Value* found = parameters.lookup(key.view());
    return found ? *found : unset;
}

/// A class that is no GUID is the all-zero one.
EventReference readEvent(const Value& parameters) {
    const auto eventId = static_cast<unsigned long long>(parameter(parameters, keys().eventId));
    constexpr unsigned long long maxEventId = std::numeric_limits<ULONG>::max();
    return {ZrAtlCom::parseGuid(parameter(parameters, keys().eventClass).get_text().view()),
            static_cast<ULONG>(std::min(eventId, maxEventId)),
            parameter(parameters, keys().sourceName).get_text(),
            parameter(parameters, keys().types).get_binary(),
            parameter(parameters, keys().data).get_binary()};
}

/// The first look-up that fails is the answer.
ResultPair lookUp(TextLookup& lookup, const EventReference& event, LCID language,
                  LocalizedTexts& texts) {
    struct Step {
        Translation (TextLookup::*ask)(const EventReference&, LCID);
        Value LocalizedTexts::*into;
    };
    static constexpr Step steps[] = {
        {&TextLookup::eventText, &LocalizedTexts::eventText},
        {&TextLookup::eventClassName, &LocalizedTexts::eventClassName},
        {&TextLookup::sourceName, &LocalizedTexts::sourceName},
        {&TextLookup::guidance, &LocalizedTexts::guidance},
    };
    for (const Step& step : steps) {
        Translation translation = (lookup.*step.ask)(event, language);
        if (!translation.result.succeeded())
            return translation.result;
        texts.*step.into = std::move(translation.value);
    }
    return {};
}

Value withTexts(Value parameters, const LocalizedTexts& texts) {
    parameters.reserve(parameters.size() + localizedParameterCount);
    static const Text eventClassName = Text::constant("eventClassName");
    static const Text localizedSourceName = Text::constant("localizedSourceName");
    parameters.insert_or_update(eventClassName, texts.eventClassName);
    if (texts.sourceName.isset())
        parameters.insert_or_update(localizedSourceName, texts.sourceName);
    for (const Text& key : {guidanceKeys().causeRemedy, guidanceKeys().details})
        if (const Value* found = texts.guidance.lookup(key.view()))
            parameters.insert_or_update(key, *found);
    return parameters;
}

}  // namespace

ResultPair EventLocalizer::localize(const char* locale, ILocalizable& item,
                                    String& localizedText) const {
    const LCID language = localeToLanguageId(normaliseLocale(locale ? locale : ""));
    if (language == 0)
        return ErrorValue::request_failed;
    if (!isSupported(item.kind()))
        return ErrorValue::unsupported_item;

    Value& parameters = item.parameters();
    LocalizedTexts texts;
    if (const Value* targetName = std::as_const(parameters).lookup(keys().targetName.view())) {
        const auto lookup = findTexts(targetName->get_text().view());
        if (!lookup)
            return {ErrorValue::unknown_target_system, "TARGET_NOT_FOUND"};
        const ResultPair result = lookUp(*lookup, readEvent(parameters), language, texts);
        if (!result.succeeded())
            return result;
    } else {
        texts.eventText = item.text();
        texts.eventClassName = "";
    }
    Value localized = withTexts(parameters, texts);
    Text text = texts.eventText.get_text();
    // From here on nothing throws.
    parameters = std::move(localized);
    localizedText.set_name(std::move(text));
    return {};
}

}  // namespace ZrHmiEventLogger
