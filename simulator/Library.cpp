// The functions that the library has in common with the one it stands in for.
#include "simulator/Simulator.h"
#include "simulator/com/ConnectionSettings.h"
#include "simulator/com/Logger.h"

using namespace ZrSimulator;

HRESULT ZrEventLoggerFnxProxyLib::CreateInstance(REFCLSID classId, REFIID interfaceId,
                                                 void** object) {
    return catchToResult([&]() -> HRESULT {
        if (!object)
            return E_POINTER;
        *object = nullptr;
        auto& simulator = Simulator::instance();
        if (const auto answer = simulator.unbound()->enter(Operation::CreateInstance))
            return *answer;
        if (classId == CLSID_EventLogger)
            return Ref<Logger>(new Logger(simulator))->provide(interfaceId, object);
        if (classId == CLSID_ConnectionSettings)
            return Ref<ConnectionSettings>(new ConnectionSettings(simulator.unbound()))
                ->provide(interfaceId, object);
        return CLASS_E_CLASSNOTAVAILABLE;
    });
}

HRESULT ZrEventLoggerFnxProxyLibErrorMessage(HRESULT, BSTR* text) {
    if (text)
        *text = nullptr;
    return E_NOTIMPL;
}
