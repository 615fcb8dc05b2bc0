#include "host/Text.h"

#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

namespace ZrHmiSrv {

namespace {

const detail::TextNode* create_node(std::string_view text) {
    if (text.size() >= std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("text too long");
    void* memory = ::operator new(sizeof(detail::TextNode) + text.size() + 1);
    char* characters = static_cast<char*>(memory) + sizeof(detail::TextNode);
    std::memcpy(characters, text.data(), text.size());
    characters[text.size()] = '\0';
    return new (memory) detail::TextNode(static_cast<std::uint32_t>(text.size()));
}

}  // namespace

void detail::destroy(const TextNode* node) noexcept {
    node->~TextNode();
    ::operator delete(const_cast<TextNode*>(node));
}

Text::Text(std::string_view text) {
    if (!text.empty())
        node = Node(create_node(text), false);
}

}  // namespace ZrHmiSrv
