// What many pages wait that follow the changes, while these come as fast as a plant's worst flood.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

#include "bench/endtoend/ProcessUse.h"
#include "bench/endtoend/ServerInProcess.h"

namespace asio = boost::asio;
using asio::ip::tcp;

namespace {

using CrowdClock = std::chrono::steady_clock;

constexpr std::size_t followers = 200;
constexpr std::size_t perSecond = 5000;

/// When each alarm was raised, and how late its lines came.
struct Delays {
    std::vector<CrowdClock::time_point> raised;
    std::vector<float> milliseconds;
};

/// Reads the frames of a stream and looks at nothing but their lengths.
class Follower {
public:
    Follower(asio::io_context& io, std::uint16_t port, const std::string& wish, Delays& delays)
        : socket(io), delays(delays) {
        socket.connect({asio::ip::address_v4::loopback(), port});
        asio::write(socket, asio::buffer("GET /api/stream?types=raised" + wish +
                                         " HTTP/1.1\r\nHost: localhost\r\nUpgrade: websocket\r\n"
                                         "Connection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
                                         "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n"));
        std::string answer;
        const std::size_t end =
            asio::read_until(socket, asio::dynamic_buffer(answer), "\r\n\r\n");
        take(answer.data() + end, answer.size() - end);
        read();
    }

    std::size_t lines() const { return next; }

private:
    void read() {
        socket.async_read_some(asio::buffer(buffer),
                               [this](boost::system::error_code error, std::size_t size) {
                                   if (error)
                                       return;
                                   take(buffer.data(), size);
                                   read();
                               });
    }

    void take(const char* bytes, std::size_t size) {
        while (size > 0) {
            if (left == 0) {
                head.push_back(static_cast<unsigned char>(*bytes++));
                --size;
                readHead();
                continue;
            }
            const std::size_t taken = std::min(size, left);
            bytes += taken;
            size -= taken;
            left -= taken;
            if (left == 0 && isLine)
                noteLine();
        }
    }

    void readHead() {
        constexpr std::size_t signOfLife = 100;  // bytes that its line has at most
        const std::size_t further = head.size() < 2 || head[1] < 126 ? 0 : head[1] == 126 ? 2 : 8;
        if (head.size() < 2 + further)
            return;
        left = further == 0 ? head[1] : 0;
        for (std::size_t i = 0; i < further; ++i)
            left = left << 8 | head[2 + i];
        isLine = left > signOfLife;
        head.clear();
    }

    void noteLine() {
        const std::chrono::duration<float, std::milli> late =
            CrowdClock::now() - delays.raised.at(next++);
        delays.milliseconds.push_back(late.count());
    }

    tcp::socket socket;
    Delays& delays;
    std::array<char, 65536> buffer;
    std::vector<unsigned char> head;
    std::size_t left = 0;  ///< bytes of the payload
    bool isLine = false;
    std::atomic<std::size_t> next = 0;  ///< of the lines
};

void raiseToCrowd(benchmark::State& state, const std::string& wish) {
    constexpr std::size_t atOnce = 5;
    const char* const told = std::getenv("SUSTAINED_SECONDS");
    const auto count =
        static_cast<std::size_t>((told ? std::atof(told) : 5) * perSecond) / atOnce * atOnce;
    const std::string raise = raiseAction(atOnce);
    for (auto _ : state) {
        ServerInProcess server(1000);
        Delays delays{std::vector<CrowdClock::time_point>(count), {}};
        delays.milliseconds.reserve(followers * delays.raised.size());
        asio::io_context io;
        std::vector<std::unique_ptr<Follower>> crowd;
        for (std::size_t i = 0; i < followers; ++i)
            crowd.push_back(std::make_unique<Follower>(io, server.port(), wish, delays));
        std::thread reader([&] { io.run(); });
        const ProcessUse before = ProcessUse::now();
        const auto start = CrowdClock::now();
        for (std::size_t made = 0; made < count; made += atOnce) {
            std::this_thread::sleep_until(start + made * std::chrono::seconds(1) / perSecond);
            std::fill_n(delays.raised.begin() + static_cast<std::ptrdiff_t>(made), atOnce,
                        CrowdClock::now());
            server.act(raise);
        }
        const auto end = CrowdClock::now() + std::chrono::minutes(1);
        while (CrowdClock::now() < end && std::any_of(crowd.begin(), crowd.end(), [&](auto& each) {
                   return each->lines() < count;
               }))
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        io.stop();
        reader.join();
        auto& late = delays.milliseconds;
        const auto lines = static_cast<double>(late.size());
        std::sort(late.begin(), late.end());
        state.SetIterationTime(std::chrono::duration<double>(CrowdClock::now() - start).count());
        state.counters["lines"] = lines;
        state.counters["p50_ms"] = late.empty() ? 0 : late[late.size() / 2];
        state.counters["p99_ms"] = late.empty() ? 0 : late[late.size() * 99 / 100];
        state.counters["cpu_us"] = ProcessUse::now().since(before).microseconds / lines;
    }
}

BENCHMARK_CAPTURE(raiseToCrowd, whole, "")->Iterations(1)->UseManualTime();
BENCHMARK_CAPTURE(raiseToCrowd, brief, "&brief=1")->Iterations(1)->UseManualTime();

}  // namespace
