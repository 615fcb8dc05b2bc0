/// An extension that does what a test tells it through commands and its configuration, so that
/// the server's side of the interface can be tested alone.
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>

#include "host/IZrHmiSrvExtHost.h"

using namespace ZrHmiSrv;

namespace {

class TestExtension final : public IZrHmiSrvExt,
                            public IZrHmiSrvShutdownListener,
                            public IZrHmiSrvRequestListener {
public:
    explicit TestExtension(IZrHmiSrvExtHost* host) : host(host) {}

    ~TestExtension() override {
        const bool registered = host->unregister_listener(context, asShutdown).succeeded() ||
                                host->unregister_listener(context, asRequest).succeeded();
        std::fprintf(stderr, "destroyed %s listeners\n", registered ? "with" : "without");
    }

    ResultPair init(const Context& given) override {
        context = given;
        host->register_listener(context, asShutdown);
        host->register_listener(context, asRequest);
        Value refusal;
        host->read_configuration(refusal, context, "REFUSE");
        Value hang;
        host->read_configuration(hang, context, "HANG_IN_INIT");
        if (hang.isset())
            awaitShutdown();
        return {refusal.isset() ? static_cast<ErrorValue>(static_cast<int>(refusal))
                                : ErrorValue::success,
                "as configured"};
    }

    String description() override { return {}; }

    ResultPair shutdown(const Context&) override {
        std::fprintf(stderr, "shut down\n");
        const std::lock_guard lock(mutex);
        isShutDown = true;
        changed.notify_all();
        return ErrorValue::success;
    }

    ResultPair handle(const Context&, CommandGroup& commands) override {
        for (auto command = commands.begin_vector(); command != commands.end_vector(); ++command) {
            const std::string name = command->mapping();
            if (name == "unregister")
                host->unregister_listener(context, asRequest);
            else if (name == "hang")
                awaitShutdown();
            else if (name == "hang for ever")
                hangForEver();
            else if (name == "throw")
                throw std::runtime_error("as told");
            command->set_extension_result(293);
            command->read_value() = command->write_value();
        }
        return ErrorValue::success;
    }

private:
    void awaitShutdown() {
        std::fprintf(stderr, "hanging\n");
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return isShutDown; });
    }
    void hangForEver() {
        std::fprintf(stderr, "hanging\n");
        std::unique_lock lock(mutex);
        changed.wait(lock, [] { return false; });
    }

    IZrHmiSrvExtHost* const host;
    IZrHmiSrvShutdownListener* const asShutdown = this;
    IZrHmiSrvRequestListener* const asRequest = this;
    Context context;
    std::mutex mutex;  // guards the flag
    std::condition_variable changed;
    bool isShutDown = false;
};

}  // namespace

ZRHMISRV_ENTRY int ext_interface(IZrHmiSrvExtHost* host, IZrHmiSrvExt** extension,
                                 double* version) {
    initialize_api(host);
    *extension = new (std::nothrow) TestExtension(host);
    *version = interface_version;
    return 0;
}
