#include "platform/organizer_folder/card_writer.h"

#include "platform/organizer_folder/card_name.h"
#include "platform/organizer_folder/card_reader.h"
#include "platform/organizer_folder/ical_values.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

namespace tandolin::vcard {

using ical::sameName;

namespace {

/// A member with a line of its own, and how that begins where it is new, in version 3.0.
struct OwnLine {
    Member member;
    std::string_view name;
    std::string_view type; ///< comma list
    Escape escape = Escape::single;
};

constexpr std::array kOwnLines{OwnLine{Member::HomePhone, "TEL", "HOME"},
                               OwnLine{Member::BusinessPhone, "TEL", "WORK"},
                               OwnLine{Member::MobilePhone, "TEL", "CELL"},
                               OwnLine{Member::HomeFax, "TEL", "HOME,FAX"},
                               OwnLine{Member::BusinessFax, "TEL", "WORK,FAX"},
                               OwnLine{Member::Email, "EMAIL", "INTERNET"},
                               OwnLine{Member::HomePage, "URL", "", Escape::address}};

/// The members of an address and their places in ADR.
struct AddressMembers {
    Use use;
    std::string_view type;
    std::array<std::pair<Member, std::size_t>, 4> parts;
};

constexpr std::array kAddresses{AddressMembers{Use::home,
                                               "HOME",
                                               {{{Member::HomeStreet, part::kStreet},
                                                 {Member::HomeCity, part::kCity},
                                                 {Member::HomePostalCode, part::kPostalCode},
                                                 {Member::HomeCountry, part::kCountry}}}},
                                AddressMembers{Use::business,
                                               "WORK",
                                               {{{Member::BusinessStreet, part::kStreet},
                                                 {Member::BusinessCity, part::kCity},
                                                 {Member::BusinessPostalCode, part::kPostalCode},
                                                 {Member::BusinessCountry, part::kCountry}}}}};

constexpr std::size_t kNameParts = 5;
constexpr std::size_t kAddressParts = 7;

/// ";TYPE=HOME,FAX" as each version writes it.
std::string parametersFor(std::string_view types, Version version) {
    if (types.empty() || (version == Version::v40 && types == "INTERNET")) {
        return {};
    }
    if (version == Version::v30) {
        return ";TYPE=" + std::string(types);
    }
    if (version == Version::v40) {
        return ";TYPE=" + lowerAscii(std::string(types));
    }
    std::string words = ";" + std::string(types);
    std::ranges::replace(words, ',', ';');
    return words;
}

std::vector<Piece> keptPieces(std::string_view value, char separator, std::size_t atLeast) {
    std::vector<Piece> pieces;
    for (const std::string_view one : partsOf(value, separator)) {
        pieces.push_back({std::string(one), false});
    }
    // A backslash at the very end would escape the separator that comes behind it now.
    std::string& last = pieces.back().bytes;
    const std::size_t slashes = last.size() - (last.find_last_not_of('\\') + 1);
    if (pieces.size() < atLeast && slashes % 2 == 1) {
        last += '\\';
    }
    pieces.resize(std::max(pieces.size(), atLeast));
    return pieces;
}

bool areEmpty(const std::vector<Piece>& pieces) {
    return std::ranges::all_of(pieces, [](const Piece& piece) { return piece.bytes.empty(); });
}

bool isInUri(char c) {
    return (c >= '0' && c <= '9') || std::string_view("+-.()").find(c) != std::string_view::npos;
}

/// The tokens of a text of categories.
std::vector<std::string> listed(std::string_view text) {
    std::vector<std::string> tokens;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(','), text.size());
        if (std::string token = plainText(text.substr(0, end)); !token.empty()) {
            tokens.push_back(std::move(token));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return tokens;
}

/// Takes a category, which may hold commas itself, out of the tokens. False when it is not there.
bool takeCategory(std::vector<std::string>& tokens, const std::string& category) {
    const std::vector<std::string> sought = listed(category);
    const auto found = std::search(tokens.begin(), tokens.end(), sought.begin(), sought.end());
    if (sought.empty() || found == tokens.end()) {
        return false;
    }
    tokens.erase(found, found + std::ssize(sought));
    return true;
}

/// One edit of one card. It decides on the card as it was read; the lines change at the end.
class Edit {
public:
    Edit(ical::ContentLines& lines, int component, const CardFacts& wanted,
         std::string_view fileName)
        : lines_(lines), card_(lines, component), wanted_(wanted),
          stored_(factsOf(card_, fileName)),
          begin_(lines.components().at(static_cast<std::size_t>(component)).begin) {}

    bool apply(ical::Seconds nowUtc) {
        setName();
        setShownName();
        setCompany();
        for (const OwnLine& line : kOwnLines) {
            setOwnLine(line);
        }
        for (const AddressMembers& address : kAddresses) {
            setAddress(address);
        }
        setCategories();
        if (changes_.empty() && added_.empty()) {
            return false;
        }
        if (card_.text(card_.find("UID")).empty()) {
            setLine(card_.find("UID"), "UID", "", {{stored_[Member::EntryID], true}});
        }
        setRevision(nowUtc);
        write();
        return true;
    }

private:
    [[nodiscard]] bool differs(Member member) const { return wanted_[member] != stored_[member]; }

    /// The line with these pieces; a new one where there is none.
    void setLine(const CardLine* line, std::string_view name, std::string_view types,
                 const std::vector<Piece>& pieces, Escape escape = Escape::single,
                 char separator = ';') {
        if (line != nullptr) {
            changes_[line->line] =
                written(line->property, pieces, separator, escape, card_.version());
            return;
        }
        const std::string parameters = parametersFor(types, card_.version());
        added_.push_back(
            written({{}, name, parameters, {}}, pieces, separator, escape, card_.version()));
    }

    void removeLine(const CardLine& line) { changes_[line.line] = std::nullopt; }

    void setName() {
        if (!differs(Member::LastName) && !differs(Member::FirstName)) {
            return;
        }
        const CardLine* line = card_.find("N");
        auto pieces = keptPieces(line == nullptr ? "" : line->property.value, ';',
                                 line == nullptr ? kNameParts : 2);
        // What is written anew is the part that differs; without N there is no other.
        if (line == nullptr || differs(Member::LastName)) {
            pieces[part::kLastName] = {wanted_[Member::LastName], true};
        }
        if (line == nullptr || differs(Member::FirstName)) {
            pieces[part::kFirstName] = {wanted_[Member::FirstName], true};
        }
        setLine(line, "N", "", pieces, Escape::structured);
    }

    void setShownName() {
        const CardLine* line = card_.find("FN");
        const bool renames = differs(Member::LastName) || differs(Member::FirstName) ||
                             shownName(wanted_) != shownName(stored_);
        if (line == nullptr || !renames) {
            return;
        }
        if (const auto name = renamed(card_.text(line), nameParts(stored_), nameParts(wanted_))) {
            setLine(line, "FN", "", {{*name, true}});
        }
    }

    [[nodiscard]] NameParts nameParts(const CardFacts& facts) const {
        const CardLine* line = card_.find("N");
        return {facts[Member::LastName], facts[Member::FirstName], card_.text(line, 2),
                card_.text(line, 3),     card_.text(line, 4),      shownName(facts)};
    }

    void setCompany() {
        if (!differs(Member::CompanyName)) {
            return;
        }
        const CardLine* line = card_.lineOf(Member::CompanyName);
        auto pieces = keptPieces(line == nullptr ? "" : line->property.value, ';', 1);
        pieces[0] = {wanted_[Member::CompanyName], true};
        if (line != nullptr && areEmpty(pieces)) {
            removeLine(*line);
        } else {
            setLine(line, "ORG", "", pieces, Escape::structured);
        }
    }

    void setOwnLine(const OwnLine& own) {
        if (!differs(own.member)) {
            return;
        }
        const CardLine* line = card_.lineOf(own.member);
        const std::string& text = wanted_[own.member];
        if (line != nullptr && text.empty()) {
            removeLine(*line);
        } else if (line != nullptr && !schemeOf(line->property.value).empty()) {
            setNumberUri(*line, text);
        } else {
            setLine(line, own.name, own.type, {{text, true}}, own.escape);
        }
    }

    /// A number that no address of the net can hold stands as a text from then on.
    void setNumberUri(const CardLine& line, const std::string& number) {
        if (std::ranges::all_of(number, isInUri)) {
            const std::string_view scheme = schemeOf(line.property.value);
            setLine(&line, "", "", {{std::string(scheme) + number, true}}, Escape::address);
            return;
        }
        CardLine asText = line;
        const std::string parameters = withoutParameter(line.property.parameters, "VALUE");
        asText.property.parameters = parameters;
        setLine(&asText, "", "", {{number, true}});
    }

    void setAddress(const AddressMembers& address) {
        const CardLine* line = card_.address(address.use);
        auto pieces = keptPieces(line == nullptr ? "" : line->property.value, ';', kAddressParts);
        bool changed = false;
        for (const auto& [member, place] : address.parts) {
            if (differs(member)) {
                pieces[place] = {wanted_[member], true};
                changed = true;
            }
        }
        if (!changed) {
            return;
        }
        removeLabels(address.use, line);
        if (line == nullptr) {
            setLine(line, "ADR", address.type, pieces, Escape::structured);
        } else if (areEmpty(pieces)) {
            removeLine(*line);
        } else {
            CardLine unlabelled = *line;
            const std::string parameters = withoutParameter(line->property.parameters, "LABEL");
            unlabelled.property.parameters = parameters;
            setLine(&unlabelled, "", "", pieces, Escape::structured);
        }
    }

    /// The same address as printed on a letter is no longer right.
    void removeLabels(Use use, const CardLine* address) {
        for (const CardLine& line : card_.lines()) {
            const bool same = use == Use::home ? line.marks.home : line.marks.work;
            const bool both = address != nullptr && address->marks.home == line.marks.home &&
                              address->marks.work == line.marks.work && line.marks.plain;
            if (sameName(line.property.name, "LABEL") && (same || both)) {
                removeLine(line);
            }
        }
    }

    /// Categories that stay keep their line and their escapes.
    void setCategories() {
        if (!differs(Member::Categories)) {
            return;
        }
        std::vector<std::string> left = listed(wanted_[Member::Categories]);
        const CardLine* last = nullptr;
        std::vector<Piece> lastKept;
        for (const CardLine& line : card_.lines()) {
            if (!sameName(line.property.name, "CATEGORIES")) {
                continue;
            }
            std::vector<Piece> pieces = keptCategories(line, left);
            if (pieces.empty()) {
                removeLine(line);
            } else {
                if (pieces.size() < partsOf(line.property.value, ',').size()) {
                    setLine(&line, "", "", pieces, Escape::single, ',');
                }
                last = &line;
                lastKept = std::move(pieces);
            }
        }
        if (!left.empty()) {
            for (std::string& category : left) {
                lastKept.push_back({std::move(category), true});
            }
            setLine(last, "CATEGORIES", "", lastKept, Escape::single, ',');
        }
    }

    [[nodiscard]] std::vector<Piece> keptCategories(const CardLine& line,
                                                    std::vector<std::string>& wanted) const {
        std::vector<Piece> kept;
        const auto texts = categoriesOf(card_, line);
        const auto parts = partsOf(line.property.value, ',');
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (takeCategory(wanted, texts[i])) {
                kept.push_back({std::string(parts[i]), false});
            }
        }
        return kept;
    }

    /// Other programs tell by it which of two copies is the newer one.
    void setRevision(ical::Seconds nowUtc) {
        const CardLine* line = card_.find("REV");
        if (line == nullptr) {
            return;
        }
        std::string now = ical::timeText(nowUtc, ical::Form::utc);
        if (line->property.value.find('-') != std::string_view::npos) {
            now.insert(13, ":").insert(11, ":").insert(6, "-").insert(4, "-");
        }
        changes_[line->line] =
            WrittenLine{std::string(line->property.group)
                            .append(line->property.name)
                            .append(withoutParameter(line->property.parameters, "VALUE"))
                            .append(":")
                            .append(now)};
    }

    /// Behind a line that surely ends: what follows a picture of version 2.1 may belong to it.
    [[nodiscard]] std::size_t placeForNew() const {
        std::size_t place = begin_ + 1;
        for (const CardLine& line : card_.lines()) {
            constexpr std::array<std::string_view, 10> kOurs{
                "VERSION", "UID", "N", "FN", "ORG", "TEL", "EMAIL", "ADR", "URL", "CATEGORIES"};
            if (std::ranges::any_of(
                    kOurs, [&](std::string_view n) { return sameName(n, line.property.name); })) {
                place = line.line + 1;
            }
        }
        return place;
    }

    void write() {
        const std::size_t place = placeForNew();
        bool added = false;
        const auto addNew = [&] {
            for (const WrittenLine& line : added_) {
                lines_.insertLine(place, line.text, line.fold);
            }
            added = true;
        };
        std::ranges::reverse(added_);
        // From below, so that the numbers of the lines above hold.
        for (auto change = changes_.rbegin(); change != changes_.rend(); ++change) {
            if (!added && change->first < place) {
                addNew();
            }
            if (const auto& line = change->second) {
                lines_.replaceLine(change->first, line->text, line->fold);
            } else {
                lines_.removeLines(change->first, change->first);
            }
        }
        if (!added) {
            addNew();
        }
    }

    ical::ContentLines& lines_;
    const Card card_;
    const CardFacts& wanted_;
    const CardFacts stored_;
    std::size_t begin_;
    std::map<std::size_t, std::optional<WrittenLine>> changes_; ///< nothing: the line goes
    std::vector<WrittenLine> added_;
};

/// Collects the lines of a new card.
class Composer {
public:
    /// A line that is short and has nothing to escape.
    void plain(std::string_view name, std::string_view value) {
        bytes_.append(name).append(":").append(value).append("\r\n");
    }

    void line(std::string_view name, std::string_view types, const std::vector<Piece>& pieces,
              Escape escape = Escape::single, char separator = ';') {
        const std::string parameters = parametersFor(types, Version::v30);
        bytes_ += ical::foldedLine(
            written({{}, name, parameters, {}}, pieces, separator, escape, Version::v30).text,
            "\r\n");
    }

    void text(std::string_view name, std::string_view types, const std::string& text,
              Escape escape = Escape::single) {
        if (!text.empty()) {
            line(name, types, {{text, true}}, escape);
        }
    }

    std::string take() { return std::move(bytes_); }

private:
    std::string bytes_;
};

void composeAddress(Composer& out, const AddressMembers& address, const CardFacts& facts) {
    std::vector<Piece> pieces(kAddressParts);
    for (const auto& [member, place] : address.parts) {
        pieces[place] = {facts[member], true};
    }
    if (!areEmpty(pieces)) {
        out.line("ADR", address.type, pieces, Escape::structured);
    }
}

} // namespace

bool applyFacts(ical::ContentLines& lines, std::string_view id, const CardFacts& wanted,
                std::string_view fileName, ical::Seconds nowUtc) {
    return Edit(lines, cardWith(lines, id, fileName), wanted, fileName).apply(nowUtc);
}

bool removeCard(ical::ContentLines& lines, std::string_view id, std::string_view fileName) {
    const auto card = static_cast<std::size_t>(cardWith(lines, id, fileName));
    lines.removeLines(lines.components()[card].begin, lines.components()[card].end);
    return std::ranges::any_of(lines.components(),
                               [](const ical::Component& c) { return c.parent < 0; });
}

std::string shownName(const CardFacts& facts) {
    const std::string name = fullName(facts[Member::FirstName], facts[Member::LastName]);
    if (!name.empty()) {
        return name;
    }
    for (const Member member : {Member::CompanyName, Member::Email, Member::MobilePhone,
                                Member::HomePhone, Member::BusinessPhone, Member::EntryID}) {
        if (!facts[member].empty()) {
            return facts[member];
        }
    }
    return {};
}

std::string newCardFile(std::string_view id, const CardFacts& facts, ical::Seconds nowUtc) {
    Composer out;
    out.plain("BEGIN", "VCARD");
    out.plain("VERSION", "3.0");
    out.plain("UID", id);
    // The version asks for a name that is not empty.
    out.text("FN", "", shownName(facts));
    std::vector<Piece> name(kNameParts);
    name[part::kLastName] = {facts[Member::LastName], true};
    name[part::kFirstName] = {facts[Member::FirstName], true};
    out.line("N", "", name, Escape::structured);
    if (!facts[Member::CompanyName].empty()) {
        out.line("ORG", "", {{facts[Member::CompanyName], true}}, Escape::structured);
    }
    for (const OwnLine& own : kOwnLines) {
        out.text(own.name, own.type, facts[own.member], own.escape);
    }
    for (const AddressMembers& address : kAddresses) {
        composeAddress(out, address, facts);
    }
    std::vector<Piece> categories;
    for (std::string& category : listed(facts[Member::Categories])) {
        categories.push_back({std::move(category), true});
    }
    if (!categories.empty()) {
        out.line("CATEGORIES", "", categories, Escape::single, ',');
    }
    out.plain("REV", ical::timeText(nowUtc, ical::Form::utc));
    out.plain("END", "VCARD");
    return out.take();
}

} // namespace tandolin::vcard
