#include "server/http/Compression.h"

#include <stdexcept>

#include <zlib.h>

namespace hmi {

struct GzipStream::State : z_stream {};

namespace {

constexpr int fast = 3;           // lists are made for each request: speed counts more than size
constexpr int gzipWindow = 15 + 16;  // the largest window, with gzip's header
constexpr int memory = 8;

}  // namespace

GzipStream::GzipStream() : state(new State{}) {
    if (deflateInit2(state.get(), fast, Z_DEFLATED, gzipWindow, memory, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::runtime_error("no memory to compress an answer");
}

GzipStream::~GzipStream() {
    deflateEnd(state.get());
}

std::string GzipStream::add(std::string_view part) {
    return run(part, Z_SYNC_FLUSH);
}

std::string GzipStream::finish() {
    return run({}, Z_FINISH);
}

std::string GzipStream::run(std::string_view part, int flush) {
    std::string packed;
    Bytef block[16384];
    std::string input(part);  // zlib's interface wants it writable
    state->next_in = reinterpret_cast<Bytef*>(input.data());
    state->avail_in = static_cast<uInt>(input.size());
    do {
        state->next_out = block;
        state->avail_out = sizeof block;
        deflate(state.get(), flush);
        packed.append(reinterpret_cast<const char*>(block), sizeof block - state->avail_out);
    } while (state->avail_out == 0);
    return packed;
}

std::string gzip(std::string_view text) {
    GzipStream stream;
    std::string packed = stream.add(text);
    return packed += stream.finish();
}

}  // namespace hmi
