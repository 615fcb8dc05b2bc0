#include "host/Text.h"

#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <unordered_map>

#include "platform/Mutex.h"

namespace ZrHmiSrv {

namespace {

detail::TextNode* create_node(std::string_view text) {
    if (text.size() >= std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("text too long");
    void* memory = ::operator new(sizeof(detail::TextNode) + text.size() + 1);
    char* characters = static_cast<char*>(memory) + sizeof(detail::TextNode);
    std::memcpy(characters, text.data(), text.size());
    characters[text.size()] = '\0';
    return new (memory) detail::TextNode(static_cast<std::uint32_t>(text.size()));
}

/// One node for each text.
struct Constants {
    using Node = boost::intrusive_ptr<const detail::TextNode>;
    Mutex mutex;
    std::unordered_map<std::string_view, Node> nodes GUARDED_BY(mutex);
};

}  // namespace

void detail::destroy(const TextNode* node) noexcept {
    node->~TextNode();
    ::operator delete(const_cast<TextNode*>(node));
}

Text::Text(std::string_view text) {
    if (!text.empty())
        node = Node(create_node(text), false);
}

Text Text::constant(std::string_view text) {
    if (text.empty())
        return {};
    // Never destroyed: what uses them may go later, and extensions that are unloaded leave theirs.
    static Constants& all = *new Constants;
    Lock lock(all.mutex);
    if (const auto known = all.nodes.find(text); known != all.nodes.end())
        return Text(known->second);
    detail::TextNode* const created = create_node(text);
    Node node(created, false);
    all.nodes.emplace(node->view(), node);
    created->make_permanent();
    return Text(std::move(node));
}

}  // namespace ZrHmiSrv
