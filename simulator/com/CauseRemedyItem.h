#pragma once

#include <string>

#include "simulator/com/RuntimeObject.h"
#include "simulator/plant/EventCatalog.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrSimulator {

/// A cause and its remedy in one language.
class CauseRemedyItem final : public RuntimeObject<ZrEventLoggerFnxProxyLib::IZrCauseRemedy> {
public:
    CauseRemedyItem(std::shared_ptr<Border> border, const CauseRemedy& entry, LCID lcid)
        : RuntimeObject(std::move(border)),
          id(entry.id),
          cause(entry.cause.inLanguage(lcid)),
          remedy(entry.remedy.inLanguage(lcid)) {}

    HRESULT STDMETHODCALLTYPE get_Id(BSTR* text) override {
        return read(Operation::GetText, text, [&] { return newBstr(id); });
    }
    HRESULT STDMETHODCALLTYPE get_Cause(BSTR* text) override {
        return read(Operation::GetText, text, [&] { return newBstr(cause); });
    }
    HRESULT STDMETHODCALLTYPE get_Remedy(BSTR* text) override {
        return read(Operation::GetText, text, [&] { return newBstr(remedy); });
    }

private:
    const std::string id;
    const std::string cause;
    const std::string remedy;
};

}  // namespace ZrSimulator
