#pragma once

#include "host/Event.h"
#include "host/Text.h"

namespace ZrHmiSrv {

/// The calling context that every host call takes. Copies are cheap.
class Context {
public:
    Context() noexcept = default;
    explicit Context(Text domain, Session session = {}) noexcept
        : domain_name(std::move(domain)), client(std::move(session)) {}

    /// The name under which the extension is known in the server.
    const Text& domain() const noexcept { return domain_name; }
    const Session& session() const noexcept { return client; }

private:
    Text domain_name;
    Session client;
};

}  // namespace ZrHmiSrv
