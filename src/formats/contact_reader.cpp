#include "formats/contact_codec.h"
#include "formats/encodings.h"
#include "formats/object_lines.h"
#include "formats/object_report.h"
#include "store/contact_twins.h"

#include <algorithm>
#include <array>

namespace tandolin {

namespace {

/// One card on its way into the current row. Unlike a calendar entry's reader it goes line by line:
/// a folded line is none of its own, and what it does not know it passes over.
class CardReader {
public:
    CardReader(Table<Contact>& row, TextView object, TextView fileName, bool codePage,
               void (*otherVersion)(TextView))
        : row_(row), rest_(object), fileName_(fileName), codePage_(codePage),
          otherVersion_(otherVersion) {}

    std::optional<Failure> run() {
        auto failure = attempt([this] {
            for (; rest_.find(u'\n') != TextView::npos; ++line_) {
                readLine(takeLine(rest_));
            }
            row_.set(con::Mobile, true);
            row_.set(con::EntryType, CONST_ENTRY_vCAL_MOBILE);
        });
        if (failure) {
            failure->File = fileName_;
            failure->Line = line_;
        }
        return failure;
    }

private:
    struct Property {
        TextView tag;
        void (CardReader::*read)();
    };

    static const std::array<Property, 10> kProperties;

    void readLine(TextView line) {
        fullTag_ = HolTeilstring(line, u":");
        if (fullTag_.empty()) {
            return;
        }
        value_ = line;
        encodeString(value_, fullTag_, utf8_,
                     {.file = fileName_, .line = line_, .codePage = codePage_});
        row_.set(con::UTF8Flag, utf8_);
        tag_ = fullTag_.substr(0, fullTag_.find(u';'));
        const auto* const property = std::ranges::find(kProperties, tag_, &Property::tag);
        if (property != kProperties.end()) {
            (this->*property->read)();
        }
    }

    void set(const ContactTwin& twin, TextView value) {
        row_.set(twin.phone, value);
        row_.set(twin.organizer, value);
    }

    void begin() { expectCard(failure_number::kUnexpectedBegin); }

    void end() { expectCard(failure_number::kUnexpectedEnd); }

    void expectCard(std::int32_t number) const {
        if (value_ != u"VCARD") {
            throw unexpectedTag(number, value_, tag_);
        }
    }

    void name() {
        const std::vector<Text> elements = SplitESCStrings(value_, 2);
        if (!elements.empty()) {
            set({con::LastName, con::PIMLastName}, elements.front());
        }
        if (elements.size() > 1) {
            set({con::FirstName, con::PIMFirstName}, elements.back());
        }
    }

    void company() {
        if (!value_.empty()) {
            set({con::Company, con::PIMCompany}, firstOfESCStrings(value_));
        }
    }

    // Of the parameters that make an address count the bare tag is one, so every address does, and
    // every e-mail address too, whatever its kind.
    void address() {
        const std::vector<Text> elements = SplitESCStrings(value_, 7);
        const auto take = [&](std::size_t element, const ContactTwin& twin) {
            if (element < elements.size()) {
                set(twin, elements[element]);
            }
        };
        take(2, {con::Street, con::PIMStreet});
        take(3, {con::City, con::PIMCity});
        take(5, {con::ZipCode, con::PIMZipCode});
        take(6, {con::Country, con::PIMCountry});
    }

    void url() { set({con::URL, con::PIMURL}, value_); }

    void eMail() { set({con::eMail, con::PIMeMail}, value_); }

    void version() {
        if (value_ != app.core.GlobalVersion) {
            if (otherVersion_ != nullptr) {
                otherVersion_(value_);
            }
            app.core.GlobalVersion = value_;
        }
    }

    void categories() {
        row_.set(con::CategoriesText, value_);
        row_.set(con::Categories, !value_.empty());
        row_.set(con::MobileCategoriesText, value_);
    }

    /// One number can be of several kinds.
    void number() {
        const bool preferred = hasParameter(u"PREF");
        if (hasParameter(u"WORK")) {
            firstNumber({con::PhoneWork, con::PIMPhoneWork}, preferred);
        }
        if (hasParameter(u"HOME")) {
            firstNumber({con::Phone, con::PIMPhone}, preferred);
        }
        if (hasParameter(u"CELL")) {
            firstNumber({con::PhoneMobile, con::PIMPhoneMobile}, false);
        }
        if (hasParameter(u"FAX")) {
            set({con::Fax, con::PIMFax}, value_);
        }
    }

    [[nodiscard]] bool hasParameter(TextView name) const {
        for (TextView rest = fullTag_; !rest.empty();) {
            const std::size_t end = rest.find(u';');
            if (rest.substr(0, end) == name) {
                return true;
            }
            rest.remove_prefix(end == TextView::npos ? rest.size() : end + 1);
        }
        return false;
    }

    /// The first number of a kind wins, unless a later one is preferred.
    void firstNumber(const ContactTwin& twin, bool preferred) {
        if (preferred || row_[twin.phone].empty()) {
            set(twin, value_);
        }
    }

    Table<Contact>& row_;
    TextView rest_;
    TextView fileName_;
    bool codePage_;
    void (*otherVersion_)(TextView);
    TextView fullTag_;
    TextView tag_;
    Text value_;
    bool utf8_ = false;
    int line_ = 1;
};

const std::array<CardReader::Property, 10> CardReader::kProperties{{
    {u"BEGIN", &CardReader::begin},
    {u"END", &CardReader::end},
    {u"N", &CardReader::name},
    {u"ORG", &CardReader::company},
    {u"ADR", &CardReader::address},
    {u"URL", &CardReader::url},
    {u"EMAIL", &CardReader::eMail},
    {u"VERSION", &CardReader::version},
    {u"CATEGORIES", &CardReader::categories},
    {u"TEL", &CardReader::number},
}};

void showVersion(TextView version) {
    app.ports.screen.boxes->ask(tr(ids::kProgramTitle), versionConflict(version), Icon::none,
                                Buttons::ok);
}

} // namespace

Text versionConflict(TextView version) {
    return u"Versionskonflikt in vCard! Version: " + Text(version);
}

std::optional<Failure> readContactObject(Table<Contact>& table, TextView object, TextView fileName,
                                         bool codePage, void (*otherVersion)(TextView)) {
    return CardReader(table, object, fileName, codePage, otherVersion).run();
}

bool vCardParsEntryFromMobile(Table<Contact>& table, TextView object, TextView fileName,
                              bool codePage) {
    return shownAndRead({u"vCard", u"vCardParsEntryFromMobile"}, object, fileName, [&] {
        return readContactObject(table, object, fileName, codePage, showVersion);
    });
}

} // namespace tandolin
