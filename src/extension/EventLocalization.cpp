/// The extension as the host's event localization.
#include "extension/ZrHmiEventLogger.h"
#include "localization/EventLocalizer.h"

using ZrHmiSrv::Context;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ILocalizable;
using ZrHmiSrv::String;

namespace ZrHmiEventLogger {

ErrorValue ZrHmiEventLogger::localize_event(Context, const char* locale, ILocalizable& item,
                                            String& localized_text) {
    try {
        const EventLocalizer localizer([this](std::string_view targetName) {
            // The look-up keeps its target system alive.
            const auto target = targetSystems.find(targetName);
            return std::shared_ptr<TextLookup>(target, target ? &target->texts() : nullptr);
        });
        const ErrorValue result = localizer.localize(locale, item, localized_text).result();
        // All have left by then, also those that are known.
        return result == ErrorValue::unknown_target_system && stopping ? ErrorValue::not_connected
                                                                       : result;
    } catch (...) {
        return ErrorValue::request_failed;
    }
}

}  // namespace ZrHmiEventLogger
