#pragma once

#include "host/Listeners.h"

namespace bridge_test {

/// An event as a host hands it in to be localized.
class LocalizableItem final : public ZrHmiSrv::ILocalizable {
public:
    explicit LocalizableItem(ZrHmiSrv::Value parameters = {}, Kind kind = Kind::alarm)
        : itemParameters(std::move(parameters)), itemKind(kind) {}

    Kind kind() const override { return itemKind; }
    const char* name() const override { return "ZREVENTLOGGER_ALARM"; }
    const char* domain() const override { return "TestDomain"; }
    ZrHmiSrv::Timestamp time_received() const override { return {}; }
    const char* text() const override { return "its own text"; }
    ZrHmiSrv::Value& parameters() override { return itemParameters; }

    ZrHmiSrv::Value get(const char* key) const { return itemParameters.get_map().get(key); }

private:
    ZrHmiSrv::Value itemParameters;
    Kind itemKind;
};

}  // namespace bridge_test
