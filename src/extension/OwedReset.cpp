#include "extension/OwedReset.h"

namespace ZrHmiEventLogger {

void OwedReset::serve() noexcept {
    // Whoever is sending looks again afterwards.
    while (requested && !sending.exchange(true)) {
        bool sent = true;
        if (requested.exchange(false)) {
            owed = false;
            sent = trySend();
        }
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
