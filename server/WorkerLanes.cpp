#include "server/WorkerLanes.h"

#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>

namespace hmi {

namespace asio = boost::asio;

struct WorkerLanes::Threads {
    asio::thread_pool local{4};
    asio::thread_pool extension{16};  // they mostly wait
    asio::strand<asio::thread_pool::executor_type> configuration{extension.get_executor()};
};

WorkerLanes::WorkerLanes() : threads(std::make_unique<Threads>()) {}

WorkerLanes::~WorkerLanes() {
    join();
}

void WorkerLanes::run(Lane lane, std::function<void()> work) {
    switch (lane) {
        case Lane::local:
            return asio::post(threads->local, std::move(work));
        case Lane::extension:
            return asio::post(threads->extension, std::move(work));
        case Lane::configuration:
            return asio::post(threads->configuration, std::move(work));
    }
}

void WorkerLanes::join() {
    threads->local.join();
    threads->extension.join();
}

}  // namespace hmi
