#include "server/api/LongText.h"

#include <utility>

namespace hmi {

namespace {

constexpr std::size_t partSize = 64 << 10;
constexpr std::size_t fewItems = 50;

/// Makes the parts, one a call.
class Parts {
public:
    explicit Parts(LongText text) : text(std::move(text)) {}

    std::string operator()() {
        std::string part = std::exchange(text.head, {});
        if (text.count - next > fewItems)
            part.reserve(partSize + partSize / 8);
        while (next < text.count && part.size() < partSize) {
            if (next > 0)
                part += text.separator;
            text.item(next++, part);
        }
        if (next == text.count && !std::exchange(ended, true))
            part += text.tail;
        return part;
    }

    bool isDone() const noexcept { return ended; }

private:
    LongText text;
    std::size_t next = 0;
    bool ended = false;
};

}  // namespace

Response LongText::response() && {
    Response response;
    const std::size_t bytes = held;
    Parts parts(std::move(*this));
    std::string first = parts();
    if (parts.isDone()) {
        response.body = std::move(first);
        return response;
    }
    response.held = bytes + partSize;
    response.parts = [first = std::move(first), parts = std::move(parts)]() mutable {
        return first.empty() ? parts() : std::exchange(first, {});
    };
    return response;
}

}  // namespace hmi
