#include "targetsystem/proxy/CatchToHresult.h"

#include <new>

#include "targetsystem/proxy/CAtlException.h"

HRESULT ZrAtlCom::hresultOfCurrentException() noexcept {
    try {
        throw;
    } catch (const CAtlException& exception) {
        return exception.hresult();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}
