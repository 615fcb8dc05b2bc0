#include "proxy/ScriptedErrorMessage.h"

#include "platform/Text.h"

namespace {

HRESULT scriptedResult = E_NOTIMPL;
const char* scriptedText = nullptr;

}  // namespace

void scriptErrorMessage(HRESULT result, const char* text) {
    scriptedResult = result;
    scriptedText = text;
}

HRESULT ZrEventLoggerFnxProxyLibErrorMessage(HRESULT, BSTR* text) {
    *text = scriptedText ? newBstr(scriptedText) : nullptr;
    return scriptedResult;
}
