#pragma once

#include "core/text.h"

namespace tandolin {

/// An immutable text that copies of a row share: one word in a cell, a count of its holders. Not
/// for more than one thread. An empty text needs no memory.
class SharedText {
public:
    SharedText() = default;
    explicit SharedText(TextView text);

    SharedText(const SharedText& other) : block_(other.block_) { hold(); }

    SharedText(SharedText&& other) noexcept : block_(other.block_) { other.block_ = nullptr; }

    SharedText& operator=(SharedText other) noexcept {
        std::swap(block_, other.block_);
        return *this;
    }

    ~SharedText() { release(); }

    [[nodiscard]] TextView view() const;

private:
    struct Block;

    void hold() const;
    void release();

    Block* block_ = nullptr;
};

} // namespace tandolin
