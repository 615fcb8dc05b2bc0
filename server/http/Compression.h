#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace hmi {

/// Packs a text part by part in the gzip format.
class GzipStream {
public:
    GzipStream();
    ~GzipStream();

    /// What can be sent so far; nothing is held back, so that each part reaches its reader.
    std::string add(std::string_view part);
    std::string finish();

private:
    struct State;
    std::string run(std::string_view part, int flush);
    std::unique_ptr<State> state;
};

std::string gzip(std::string_view text);

}  // namespace hmi
