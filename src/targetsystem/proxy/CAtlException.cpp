#include "targetsystem/proxy/CAtlException.h"

#include "targetsystem/proxy/ErrorText.h"

void ZrAtlCom::throwCAtlException(HRESULT hr) {
    throw CAtlException(hr, describe(hr));
}
