#pragma once

#include "core/text.h"

#include <utility>

namespace tandolin {

/// An immutable text that cells share: one word in a cell, a count of its holders. Not for more
/// than one thread. An empty text needs no memory, and a short one that was made not long ago is
/// not made again: the same times, dates and words stand in row after row.
class SharedText {
public:
    SharedText() = default;
    explicit SharedText(TextView text);

    SharedText(const SharedText& other) : block_(other.block_) { hold(); }

    SharedText(SharedText&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}

    SharedText& operator=(SharedText other) noexcept {
        std::swap(block_, other.block_);
        return *this;
    }

    ~SharedText() { release(); }

    [[nodiscard]] TextView view() const {
        return block_ == nullptr ? TextView{} : TextView(block_->characters(), block_->length);
    }

private:
    /// Head of the one piece of memory that a text takes; its characters follow.
    struct Block {
        std::uint32_t holders;
        std::uint32_t length;

        [[nodiscard]] char16_t* characters() { return reinterpret_cast<char16_t*>(this + 1); }
    };

    static Block* make(TextView text);

    void hold() const {
        if (block_ != nullptr) {
            ++block_->holders;
        }
    }

    void release() {
        if (block_ != nullptr && --block_->holders == 0) {
            ::operator delete(block_);
        }
    }

    Block* block_ = nullptr;
};

} // namespace tandolin
