#include "platform/organizer_folder/card_reader.h"

#include "core/failure.h"
#include "platform/organizer_folder/ical_values.h"

#include <algorithm>
#include <set>

namespace tandolin::vcard {

using ical::sameName;

namespace {

enum class NumberKind : std::uint8_t { home, business, mobile, homeFax, businessFax, plain, other };

/// One number counts as one kind, so that a change of one member never moves another.
NumberKind kindOf(const Marks& marks) {
    if (marks.pager) {
        return NumberKind::other;
    }
    if (marks.fax) {
        return marks.home ? NumberKind::homeFax : NumberKind::businessFax;
    }
    return marks.cell    ? NumberKind::mobile
           : marks.home  ? NumberKind::home
           : marks.work  ? NumberKind::business
           : marks.plain ? NumberKind::plain
                         : NumberKind::other;
}

/// "2026-03-01T08:00:00Z" and its short forms in UTC or local time.
std::optional<ical::Seconds> momentOf(std::string_view text, const ical::TimeZone& local) {
    std::string compact;
    const std::size_t time = text.find('T');
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool inDate = time == std::string_view::npos || i < time;
        if (text[i] == '.') {
            i = std::min(text.find_first_not_of("0123456789", i + 1), text.size()) - 1;
        } else if (text[i] != (inDate ? '-' : ':')) {
            compact += text[i];
        }
    }
    const auto value = ical::timeOf(compact);
    if (!value) {
        return std::nullopt;
    }
    return value->form == ical::Form::utc ? local.wallOf(value->wall) : value->wall;
}

/// Without N the last word of FN is the surname.
void readName(const Card& card, CardFacts& facts) {
    if (const CardLine* name = card.find("N")) {
        facts[Member::LastName] = card.text(name, part::kLastName);
        facts[Member::FirstName] = card.text(name, part::kFirstName);
        return;
    }
    const std::string whole = card.text(card.find("FN"));
    const std::size_t last = whole.find_last_of(" \t\n") + 1;
    facts[Member::LastName] = whole.substr(last);
    facts[Member::FirstName] = plainText(std::string_view(whole).substr(0, last));
}

void readAddress(const Card& card, Use use, CardFacts& facts) {
    const CardLine* line = card.address(use);
    const bool home = use == Use::home;
    facts[home ? Member::HomeStreet : Member::BusinessStreet] = card.text(line, part::kStreet);
    facts[home ? Member::HomeCity : Member::BusinessCity] = card.text(line, part::kCity);
    facts[home ? Member::HomePostalCode : Member::BusinessPostalCode] =
        card.text(line, part::kPostalCode);
    facts[home ? Member::HomeCountry : Member::BusinessCountry] = card.text(line, part::kCountry);
}

std::string categories(const Card& card) {
    std::string all;
    for (const CardLine& line : card.lines()) {
        if (sameName(line.property.name, "CATEGORIES")) {
            for (const std::string& one : categoriesOf(card, line)) {
                all.append(all.empty() || one.empty() ? "" : ", ").append(one);
            }
        }
    }
    return all;
}

bool isList(const Card& card) {
    return sameName(card.text(card.find("KIND")), "group") ||
           sameName(card.text(card.find("X-ADDRESSBOOKSERVER-KIND")), "group");
}

ical::Seconds creationOf(const Card& card, const ical::TimeZone& local, ical::Seconds fileTime) {
    for (const char* name : {"CREATED", "REV"}) {
        if (const auto moment = momentOf(card.text(card.find(name)), local)) {
            return *moment;
        }
    }
    return fileTime;
}

std::string uidOf(const Card& card) {
    return card.text(card.find("UID"));
}

const char* problemOf(const ical::ContentLines& lines) {
    const std::string_view begin =
        lines.lines().empty() ? std::string_view{} : lines.lines().front().raw;
    const bool wide = begin.starts_with("\xFF\xFE") || begin.starts_with("\xFE\xFF") ||
                      begin.substr(0, 2).find('\0') != std::string_view::npos;
    return wide ? "the file is written in UTF-16" : lines.problem();
}

} // namespace

Card::Card(const ical::ContentLines& lines, int component) {
    const ical::Component& place = lines.components()[static_cast<std::size_t>(component)];
    lines_.reserve(place.end - place.begin);
    for (std::size_t i = place.begin + 1; i < place.end; ++i) {
        const ical::ContentLine& line = lines.lines()[i];
        const Property property = propertyOf(line.text);
        // What has no value is no property: the rest of a picture, or a quote that never ends.
        if (line.component == component && property.value.data() != nullptr) {
            lines_.push_back({i, property, marksOf(property.parameters)});
        }
    }
    if (const CardLine* version = find("VERSION")) {
        const std::string_view value = ical::withoutBlanks(version->property.value);
        version_ = value == "2.1" ? Version::v21 : value == "4.0" ? Version::v40 : Version::v30;
    }
}

template <class Test>
const CardLine* Card::best(std::string_view name, Test test) const {
    const CardLine* found = nullptr;
    for (const CardLine& line : lines_) {
        if (sameName(line.property.name, name) && test(line.marks) &&
            (found == nullptr || line.marks.preference < found->marks.preference)) {
            found = &line;
        }
    }
    return found;
}

const CardLine* Card::find(std::string_view name) const {
    return best(name, [](const Marks&) { return true; });
}

const CardLine* Card::telephone(Use use) const {
    const auto number = [this](NumberKind kind) {
        return best("TEL", [kind](const Marks& marks) { return kindOf(marks) == kind; });
    };
    if (use == Use::business) {
        return number(NumberKind::business);
    }
    // A number of no stated use is better shown than lost.
    const CardLine* home = number(NumberKind::home);
    return home != nullptr ? home : number(NumberKind::plain);
}

const CardLine* Card::address(Use use) const {
    if (use == Use::home) {
        return best("ADR", [](const Marks& marks) { return marks.home; });
    }
    // An address is one of work where nothing else is said.
    const CardLine* work = best("ADR", [](const Marks& m) { return m.work && !m.home; });
    return work != nullptr
               ? work
               : best("ADR", [](const Marks& m) { return m.plain && !m.home && !m.work; });
}

const CardLine* Card::lineOf(Member member) const {
    const auto number = [this](NumberKind kind) {
        return best("TEL", [kind](const Marks& marks) { return kindOf(marks) == kind; });
    };
    switch (member) {
    case Member::CompanyName:
        return find("ORG");
    case Member::HomePhone:
        return telephone(Use::home);
    case Member::BusinessPhone:
        return telephone(Use::business);
    case Member::MobilePhone:
        return number(NumberKind::mobile);
    case Member::HomeFax:
        return number(NumberKind::homeFax);
    case Member::BusinessFax:
        return number(NumberKind::businessFax);
    case Member::Email:
        return find("EMAIL");
    case Member::HomePage: {
        const CardLine* work = best("URL", [](const Marks& marks) { return marks.work; });
        return work != nullptr ? work : find("URL");
    }
    default:
        return nullptr;
    }
}

std::string Card::text(const CardLine* line) const {
    return line == nullptr ? std::string() : textOf(line->property.value, line->marks, version_);
}

std::string Card::text(const CardLine* line, std::size_t part) const {
    if (line == nullptr) {
        return {};
    }
    std::string text;
    eachPart(line->property.value, ';', [&, place = std::size_t{0}](std::string_view one) mutable {
        if (place++ == part) {
            text = textOf(one, line->marks, version_);
        }
    });
    return text;
}

std::string_view schemeOf(std::string_view number) {
    constexpr std::string_view kScheme = "tel:";
    const std::string_view begin = number.substr(0, kScheme.size());
    return sameName(begin, kScheme) ? begin : std::string_view{};
}

std::vector<std::string> categoriesOf(const Card& card, const CardLine& line) {
    std::vector<std::string> categories;
    for (const std::string_view one : partsOf(line.property.value, ',')) {
        categories.push_back(textOf(one, line.marks, card.version()));
    }
    return categories;
}

std::vector<int> cardsOf(const ical::ContentLines& lines) {
    std::vector<int> cards;
    for (std::size_t i = 0; i < lines.components().size(); ++i) {
        const ical::Component& component = lines.components()[i];
        if (component.parent < 0 && sameName(component.name, "VCARD")) {
            cards.push_back(static_cast<int>(i));
        }
    }
    return cards;
}

CardFacts factsOf(const Card& card, std::string_view fileName) {
    CardFacts facts;
    const std::string uid = uidOf(card);
    facts[Member::EntryID] = uid.empty() ? std::string(fileName) : uid;
    readName(card, facts);
    facts[Member::CompanyName] = card.text(card.lineOf(Member::CompanyName), 0);
    for (const Member member : {Member::HomePhone, Member::BusinessPhone, Member::MobilePhone,
                                Member::HomeFax, Member::BusinessFax}) {
        const std::string number = card.text(card.lineOf(member));
        facts[member] = plainText(std::string_view(number).substr(schemeOf(number).size()));
    }
    facts[Member::Email] = card.text(card.lineOf(Member::Email));
    facts[Member::HomePage] = card.text(card.lineOf(Member::HomePage));
    readAddress(card, Use::home, facts);
    readAddress(card, Use::business, facts);
    facts[Member::Categories] = categories(card);
    return facts;
}

std::vector<ReadCard> readCards(const ical::ContentLines& lines, std::string_view fileName,
                                const ical::TimeZone& local, ical::Seconds fileTime) {
    if (const char* problem = problemOf(lines)) {
        throw ical::Unreadable{problem};
    }
    std::vector<ReadCard> cards;
    std::set<std::string> seen;
    for (const int component : cardsOf(lines)) {
        const Card card(lines, component);
        cards.push_back({factsOf(card, fileName), creationOf(card, local, fileTime), isList(card)});
        const std::string& id = cards.back().facts[Member::EntryID];
        if (!seen.insert(id).second) {
            throw ical::Unreadable{uidOf(card).empty() ? "several cards of the file have no UID"
                                                       : "two cards have the UID " + id};
        }
    }
    return cards;
}

int cardWith(const ical::ContentLines& lines, std::string_view id, std::string_view fileName) {
    if (const char* problem = problemOf(lines)) {
        throw ical::Unreadable{problem};
    }
    for (const int component : cardsOf(lines)) {
        const std::string uid = uidOf(Card(lines, component));
        if (uid.empty() ? id == fileName : id == uid) {
            return component;
        }
    }
    throw Failure(failure_number::kNoItem, u"The contact is no longer in its file.");
}

} // namespace tandolin::vcard
