#include "platform/language_mo/mo_file.h"

#include <charconv>
#include <cstdint>

namespace tandolin::platform {

namespace {

constexpr std::uint32_t kMagic = 0x950412DE;
/// Sets a context apart from its text.
constexpr char kContextEnd = '\x04';

/// The bytes of a catalogue; every access is checked against their end.
class MoBytes {
public:
    explicit MoBytes(std::string_view bytes) : bytes_(bytes) {}

    /// False when neither byte order shows the mark of a catalogue.
    bool detectByteOrder() {
        bigEndian_ = false;
        if (number(0) == kMagic) {
            return true;
        }
        bigEndian_ = true;
        return number(0) == kMagic;
    }

    [[nodiscard]] std::optional<std::uint32_t> number(std::uint64_t at) const {
        if (at + 4 > bytes_.size()) {
            return std::nullopt;
        }
        std::uint32_t value = 0;
        for (unsigned i = 0; i < 4; ++i) {
            const auto byte = static_cast<unsigned char>(bytes_[at + i]);
            value |= static_cast<std::uint32_t>(byte) << (8 * (bigEndian_ ? 3 - i : i));
        }
        return value;
    }

    /// The text of row `index` of the table at `table`: length and offset, 4 bytes each.
    [[nodiscard]] std::optional<std::string_view> text(std::uint32_t table,
                                                       std::uint32_t index) const {
        const std::uint64_t row = table + std::uint64_t{8} * index;
        const auto length = number(row);
        const auto offset = number(row + 4);
        if (!length || !offset || std::uint64_t{*length} + *offset > bytes_.size()) {
            return std::nullopt;
        }
        return bytes_.substr(*offset, *length);
    }

private:
    std::string_view bytes_;
    bool bigEndian_ = false;
};

std::optional<int> idOf(std::string_view original) {
    const std::size_t end = original.find(kContextEnd);
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    int id = 0;
    const auto [stop, error] = std::from_chars(original.data(), original.data() + end, id);
    const bool whole = error == std::errc{} && stop == original.data() + end;
    return whole ? std::optional(id) : std::nullopt;
}

} // namespace

std::optional<std::unordered_map<int, Text>> readMo(std::string_view bytes) {
    MoBytes mo(bytes);
    if (!mo.detectByteOrder()) {
        return std::nullopt;
    }
    const auto revision = mo.number(4);
    const auto count = mo.number(8);
    const auto originals = mo.number(12);
    const auto translations = mo.number(16);
    constexpr std::uint32_t kNewestMajor = 1;
    if (!translations || *revision >> 16U > kNewestMajor) {
        return std::nullopt;
    }
    std::unordered_map<int, Text> texts;
    for (std::uint32_t i = 0; i < *count; ++i) {
        const auto original = mo.text(*originals, i);
        const auto translation = mo.text(*translations, i);
        if (!original || !translation || !isUtf8(*translation)) {
            return std::nullopt;
        }
        if (const auto id = idOf(*original)) {
            texts[*id] = fromUtf8(*translation);
        }
    }
    return texts;
}

} // namespace tandolin::platform
