#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include "host/Counted.h"
#include "host/Export.h"

namespace ZrHmiSrv {

namespace detail {

/// One allocation: the characters and a terminating null follow the node.
struct TextNode : Counted {
    explicit TextNode(std::uint32_t size) noexcept : size(size) {}
    const char* characters() const noexcept { return reinterpret_cast<const char*>(this + 1); }
    std::string_view view() const noexcept { return {characters(), size}; }

    const std::uint32_t size;
};

ZRHMISRV_API void destroy(const TextNode* node) noexcept;

inline void intrusive_ptr_add_ref(const TextNode* node) noexcept {
    node->retain();
}
inline void intrusive_ptr_release(const TextNode* node) noexcept {
    if (node->release())
        destroy(node);
}

}  // namespace detail

/// Immutable UTF-8 text with shared ownership: a copy is one counter, never the characters. The
/// empty text owns nothing. Distinct copies may be used on distinct threads.
class ZRHMISRV_API Text {
public:
    Text() noexcept = default;
    /// Throws std::length_error from 4 GiB on.
    Text(std::string_view text);
    Text(const char* text) : Text(std::string_view(text ? text : "")) {}
    /// For the names that code has: stays until the process ends, and is shared without counting.
    static Text constant(std::string_view text);

    std::string_view view() const noexcept { return node ? node->view() : std::string_view(); }
    /// Null-terminated; never null.
    const char* c_str() const noexcept { return node ? node->characters() : ""; }
    bool empty() const noexcept { return !node; }
    friend bool operator==(const Text& a, const Text& b) noexcept {
        return a.node == b.node || a.view() == b.view();
    }

private:
    friend class Value;
    using Node = boost::intrusive_ptr<const detail::TextNode>;
    explicit Text(Node node) noexcept : node(std::move(node)) {}

    Node node;
};

}  // namespace ZrHmiSrv
