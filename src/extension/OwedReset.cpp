#include "extension/OwedReset.h"

namespace ZrHmiEventLogger {

void OwedReset::settle() noexcept {
    // Whoever is sending looks again afterwards.
    while (owed && !sending.exchange(true)) {
        bool sent = true;
        if (owed.exchange(false))
            sent = trySend();
        if (!sent)
            owed = true;
        sending = false;
        if (!sent)
            return;
    }
}

bool OwedReset::trySend() noexcept {
    try {
        send();
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace ZrHmiEventLogger
