#include "target/proxy/CAtlException.h"

#include "target/proxy/ErrorText.h"

void ZrAtlCom::throwCAtlException(HRESULT hr) {
    throw CAtlException(hr, describe(hr));
}
