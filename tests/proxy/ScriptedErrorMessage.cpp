#include "proxy/ScriptedErrorMessage.h"

HRESULT scriptedResult = E_NOTIMPL;

HRESULT ZrEventLoggerFnxProxyLibErrorMessage(HRESULT, BSTR* text) {
    *text = nullptr;
    return scriptedResult;
}
