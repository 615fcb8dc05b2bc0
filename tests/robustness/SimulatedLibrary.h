#pragma once

#include <string>

#include <boost/dll/shared_library.hpp>

#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace bridge_test {

/// The simulated proxy library, loaded at run time, because what is here has functions of the same
/// names: those that the code under test calls. Never unloaded.
class SimulatedLibrary {
public:
    static SimulatedLibrary& instance();

    /// An object without a stand-in before it: nothing it does is counted or goes wrong.
    HRESULT createInstance(REFCLSID classId, REFIID interfaceId, void** object);

    /// One of its functions with a plain name; `Function` is its type.
    template <class Function>
    Function& get(const char* name) {
        return library.get<Function>(name);
    }

private:
    SimulatedLibrary();

    boost::dll::shared_library library;
};

}  // namespace bridge_test
