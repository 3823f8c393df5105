#include "platform/scratch_directory.h"

#include "core/language_strings.h"
#include "platform/language_mo/mo_file.h"
#include "platform/language_mo/mo_languages.h"

#include <vector>

using namespace tandolin;
using namespace tandolin::testing;
using platform::MoLanguages;
using platform::readMo;

namespace {

enum class ByteOrder { little, big };

struct Entry {
    std::string original;
    std::string translation;
};

/// The bytes of a catalogue: header, the two tables, then the texts with a NUL behind each.
std::string catalogue(const std::vector<Entry>& entries, ByteOrder order = ByteOrder::little,
                      std::uint32_t revision = 0) {
    std::string bytes;
    const auto put = [&](std::uint32_t value) {
        for (unsigned i = 0; i < 4; ++i) {
            bytes += static_cast<char>(value >> (8 * (order == ByteOrder::big ? 3 - i : i)));
        }
    };
    const auto count = static_cast<std::uint32_t>(entries.size());
    for (const std::uint32_t value : {std::uint32_t{0x950412DE}, revision, count, std::uint32_t{28},
                                      28 + 8 * count, std::uint32_t{0}, 28 + 16 * count}) {
        put(value);
    }
    std::string texts;
    for (std::string Entry::*member : {&Entry::original, &Entry::translation}) {
        for (const Entry& entry : entries) {
            put(static_cast<std::uint32_t>((entry.*member).size()));
            put(28 + 16 * count + static_cast<std::uint32_t>(texts.size()));
            texts += entry.*member + '\0';
        }
    }
    return bytes + texts;
}

const std::vector<Entry> kEntries{{"", "Content-Type: text/plain; charset=UTF-8\n"},
                                  {"449\x04HalvernTandolin", "HalvernTandolin"},
                                  {"450\x04"
                                   "a",
                                   " Größe "},
                                  {"Find\x04"
                                   "b",
                                   "no number"}};

struct Library {
    ScratchDirectory scratch;
    std::filesystem::path home = scratch.path / "home";
    std::filesystem::path installed = scratch.path / "installed";
    Text asked = fromUtf8(home.native()) + u"\\Lng\\TDLRES0407.dll";

    Library() { std::filesystem::create_directory(installed); }

    void putHome(std::string_view bytes) const {
        std::filesystem::create_directories(home / "Lng");
        putBytes(home / "Lng" / "TDLRES0407.mo", bytes);
    }
};

} // namespace

TEST_CASE("texts are found by their number in either byte order") {
    for (const ByteOrder order : {ByteOrder::little, ByteOrder::big}) {
        const auto texts = readMo(catalogue(kEntries, order));
        REQUIRE(texts);
        CHECK(texts->size() == 2);
        CHECK(texts->at(449) == u"HalvernTandolin");
        CHECK(texts->at(450) == u" Größe ");
    }
}

TEST_CASE("bytes that are no catalogue are refused") {
    const std::string good = catalogue(kEntries);
    // The last byte is the NUL behind the last text, which nobody reads.
    for (std::size_t length = 0; length + 1 < good.size(); ++length) {
        CAPTURE(length);
        REQUIRE_FALSE(readMo(std::string_view(good).substr(0, length)));
    }
    CHECK(readMo(catalogue(kEntries, ByteOrder::little, 1U << 16U)));
    CHECK_FALSE(readMo(catalogue(kEntries, ByteOrder::little, 2U << 16U)));
    CHECK_FALSE(readMo(catalogue({{"1\x04x", "\xFF"}})));
}

TEST_CASE("counts and offsets that point outside are refused") {
    for (std::size_t at = 8; at < 28 + 16 * kEntries.size(); at += 4) {
        std::string bytes = catalogue(kEntries);
        bytes.replace(at, 4, "\xFF\xFF\xFF\xFF");
        const bool unused = at == 20 || at == 24; // hash table
        CAPTURE(at);
        CHECK(readMo(bytes).has_value() == unused);
    }
}

TEST_CASE("a home directory without libraries leaves them to the installed ones") {
    const Library files;
    MoLanguages languages({files.scratch.path / "missing", files.installed});
    CHECK(languages.open(files.asked) == 0);
    putBytes(files.installed / "TDLRES0407.mo", catalogue(kEntries));
    CHECK(languages.open(files.asked) != 0);
    // A home directory with libraries of its own is the only place.
    files.putHome(catalogue(kEntries));
    std::filesystem::remove(files.home / "Lng" / "TDLRES0407.mo");
    CHECK(languages.open(files.asked) == 0);
    CHECK(languages.lastError() == 2);
    files.putHome("no catalogue");
    CHECK(languages.open(files.asked) == 0);
    CHECK(languages.lastError() == 11);
}

TEST_CASE("the German library of this build holds the built-in set") {
    MoLanguages languages({TANDOLIN_LNG});
    const int handle = languages.open(u"/nonexistent\\Lng\\TDLRES0407.dll");
    REQUIRE(handle != 0);
    for (const GermanText& row : kGermanTexts) {
        CAPTURE(row.id);
        CHECK(languages.string(handle, row.id) == row.text);
    }
    languages.free(handle);
    CHECK(languages.string(handle, kFirstStringId).empty());
}
