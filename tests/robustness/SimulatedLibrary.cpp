#include "robustness/SimulatedLibrary.h"

#include <boost/dll/runtime_symbol_info.hpp>

#include "robustness/ConnectionSettingsProxy.h"
#include "robustness/LoggerProxy.h"
#include "simulator/Control.h"

using namespace ZrEventLoggerFnxProxyLib;
using bridge_test::SimulatedLibrary;

namespace bridge_test {

namespace {

// The one function that is not extern "C": its name as g++ and clang write it.
#ifdef _WIN32
constexpr const char* createInstanceName =
    "_ZN24ZrEventLoggerFnxProxyLib14CreateInstanceERK5_GUIDS2_PPv";
#else
constexpr const char* createInstanceName =
    "_ZN24ZrEventLoggerFnxProxyLib14CreateInstanceERK4GUIDS2_PPv";
#endif

template <class Proxy, class Interface>
HRESULT create(REFCLSID classId, void** object) {
    ZrAtlCom::ComPtr<Interface> created;
    const HRESULT hr = SimulatedLibrary::instance().createInstance(
        classId, InterfaceId<Interface>::value(), reinterpret_cast<void**>(created.put()));
    *object = created ? Proxy::standInFor(created) : nullptr;
    return hr;
}

}  // namespace

std::atomic<int>& liveProxyObjects() {
    static std::atomic<int> count = 0;
    return count;
}

SimulatedLibrary::SimulatedLibrary()
    : library(boost::dll::program_location().parent_path() / "ZrEventLoggerFnxProxy",
              boost::dll::load_mode::append_decorations) {}

SimulatedLibrary& SimulatedLibrary::instance() {
    static SimulatedLibrary* const loaded = new SimulatedLibrary;
    return *loaded;
}

HRESULT SimulatedLibrary::createInstance(REFCLSID classId, REFIID interfaceId, void** object) {
    return get<HRESULT(REFCLSID, REFIID, void**)>(createInstanceName)(classId, interfaceId, object);
}

}  // namespace bridge_test

// What the code under test takes for the library.

HRESULT ZrEventLoggerFnxProxyLib::CreateInstance(REFCLSID classId, REFIID, void** object) {
    return bridge_test::passCall(
        __func__, bridge_test::CallKind::handsOutObject,
        [&] {
            using namespace bridge_test;
            return classId == CLSID_EventLogger
                       ? create<LoggerProxy, IZrEventLogger4>(classId, object)
                       : create<ConnectionSettingsProxy, IZrConnectionSettings>(classId, object);
        },
        object);
}

HRESULT ZrEventLoggerFnxProxyLibErrorMessage(HRESULT hr, BSTR* text) {
    using Function = HRESULT(HRESULT, BSTR*);
    return bridge_test::passCall(
        __func__, bridge_test::CallKind::handsOutText,
        [&] {
            return SimulatedLibrary::instance().get<Function>(
                "ZrEventLoggerFnxProxyLibErrorMessage")(hr, text);
        },
        text);
}

int ZrSimulatorLoadPlant(const char* plant, char** answer) {
    return SimulatedLibrary::instance().get<int(const char*, char**)>(__func__)(plant, answer);
}

int ZrSimulatorApply(const char* netId, const char* actions, char** answer) {
    return SimulatedLibrary::instance().get<int(const char*, const char*, char**)>(__func__)(
        netId, actions, answer);
}

int ZrSimulatorStatus(const char* netId, char** answer) {
    return SimulatedLibrary::instance().get<int(const char*, char**)>(__func__)(netId, answer);
}

void ZrSimulatorShutdown() {
    SimulatedLibrary::instance().get<void()>(__func__)();
}

void ZrSimulatorFree(char* answer) {
    SimulatedLibrary::instance().get<void(char*)>(__func__)(answer);
}
