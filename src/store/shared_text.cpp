#include "store/shared_text.h"

#include "core/failure.h"

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <new>

namespace tandolin {

namespace {

constexpr std::size_t kLongestKept = 64;

} // namespace

SharedText::Block* SharedText::make(TextView text) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw overflowFailure();
    }
    void* memory = ::operator new(sizeof(Block) + text.size() * sizeof(char16_t));
    auto* block = new (memory) Block{1, static_cast<std::uint32_t>(text.size())};
    std::ranges::copy(text, block->characters());
    return block;
}

SharedText::SharedText(TextView text) {
    if (text.empty()) {
        return;
    }
    if (text.size() > kLongestKept) {
        block_ = make(text);
        return;
    }
    static std::array<SharedText, 1024> recent;
    SharedText& kept = recent.at(std::hash<TextView>{}(text) % recent.size());
    if (kept.view() != text) {
        SharedText fresh;
        fresh.block_ = make(text);
        kept = std::move(fresh);
    }
    block_ = kept.block_;
    hold();
}

} // namespace tandolin
