#include "platform/system_posix/posix_locale.h"

#include "core/date_formats.h"

#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

namespace tandolin::platform {

namespace {

struct Conversion {
    char16_t strftime;
    TextView letters;
};

constexpr auto kConversions = std::to_array<Conversion>({
    {u'd', u"dd"},       {u'e', u"d"},          {u'm', u"MM"},          {u'y', u"yy"},
    {u'Y', u"yyyy"},     {u'b', u"MMM"},        {u'h', u"MMM"},         {u'B', u"MMMM"},
    {u'a', u"ddd"},      {u'A', u"dddd"},       {u'H', u"HH"},          {u'k', u"H"},
    {u'I', u"hh"},       {u'l', u"h"},          {u'M', u"mm"},          {u'S', u"ss"},
    {u'p', u"tt"},       {u'P', u"tt"},         {u'T', u"HH:mm:ss"},    {u'R', u"HH:mm"},
    {u'D', u"MM/dd/yy"}, {u'F', u"yyyy-MM-dd"}, {u'r', u"hh:mm:ss tt"}, {u't', u" "},
    {u'n', u" "},        {u'%', u"%"},
});

bool isLetter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

struct LanguageNumber {
    std::string_view name;
    std::uint16_t number;
};

/// A territory of its own number stands before its language.
constexpr auto kLanguages = std::to_array<LanguageNumber>({
    {"en_US", 0x0409}, {"pt_BR", 0x0416}, {"zh_TW", 0x0404}, {"zh_HK", 0x0404}, {"zh_MO", 0x0404},
    {"da", 0x0406},    {"de", 0x0407},    {"en", 0x0809},    {"fi", 0x040B},    {"fr", 0x040C},
    {"it", 0x0410},    {"ca", 0x0403},    {"nl", 0x0413},    {"nb", 0x0814},    {"nn", 0x0814},
    {"no", 0x0814},    {"pt", 0x0816},    {"sv", 0x041D},    {"es", 0x0C0A},    {"tr", 0x041F},
    {"zh", 0x0804},    {"cs", 0x0405},    {"el", 0x0408},    {"hu", 0x040E},    {"ja", 0x0411},
    {"ko", 0x0412},    {"pl", 0x0415},    {"ro", 0x0418},    {"ru", 0x0419},    {"sk", 0x041B},
    {"uk", 0x0422},    {"sl", 0x0424},
});

constexpr std::uint16_t kGerman = 0x0407;
constexpr std::uint16_t kUnknown = 0x0409;

/// The name without codeset and modifier.
std::string_view plainName(std::string_view name) {
    return name.substr(0, name.find_first_of(".@"));
}

bool countsAsGerman(std::string_view name) {
    const std::string_view plain = plainName(name);
    return plain.empty() || plain == "C" || plain == "POSIX";
}

/// The name that the environment gives a category.
std::string nameFor(const char* category) {
    for (const char* variable : {"LC_ALL", category, "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

/// What a locale tells of dates and times, as it is kept by the system.
class LocaleFacts {
public:
    explicit LocaleFacts(const std::string& name)
        : locale_(newlocale(LC_TIME_MASK | LC_CTYPE_MASK, name.c_str(), nullptr)) {}

    LocaleFacts(const LocaleFacts&) = delete;
    LocaleFacts& operator=(const LocaleFacts&) = delete;

    ~LocaleFacts() {
        if (locale_ != nullptr) {
            freelocale(locale_);
        }
    }

    [[nodiscard]] bool known() const { return locale_ != nullptr; }

    [[nodiscard]] Text text(nl_item item) const {
        const std::string bytes = nl_langinfo_l(item, locale_);
        if (isUtf8(bytes)) {
            return fromUtf8(bytes);
        }
        // An older codeset: what a format needs of it is in its first half.
        Text text;
        std::ranges::copy_if(bytes, std::back_inserter(text),
                             [](char c) { return static_cast<unsigned char>(c) < 0x80; });
        return text;
    }

private:
    locale_t locale_;
};

} // namespace

Text lettersOf(TextView pattern) {
    Text letters;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char16_t c = pattern[i];
        if (c != u'%') {
            letters += isLetter(c) ? Text{u'\'', c, u'\''} : Text{c};
            continue;
        }
        // Padding flags and the forms of other eras change no letter, except that "%-d" is short.
        bool unpadded = false;
        while (++i < pattern.size() && TextView(u"-_0^#EO").find(pattern[i]) != TextView::npos) {
            unpadded = unpadded || pattern[i] == u'-' || pattern[i] == u'_';
        }
        const auto found = i < pattern.size()
                               ? std::ranges::find(kConversions, pattern[i], &Conversion::strftime)
                               : kConversions.end();
        if (found != kConversions.end()) {
            const bool shortens = unpadded && found->letters.size() == 2;
            letters += found->letters.substr(0, shortens ? 1 : TextView::npos);
        }
    }
    return Text(trimmed(letters));
}

std::uint16_t localeNumberOf(std::string_view name) {
    if (countsAsGerman(name)) {
        return kGerman;
    }
    const std::string_view plain = plainName(name);
    for (const std::string_view part : {plain, plain.substr(0, plain.find('_'))}) {
        const auto found = std::ranges::find(kLanguages, part, &LanguageNumber::name);
        if (found != kLanguages.end()) {
            return found->number;
        }
    }
    return kUnknown;
}

PosixLocale::PosixLocale() : number_(localeNumberOf(nameFor("LC_MESSAGES"))) {
    Text date = u"dd.MM.yyyy";
    Text time = u"HH:mm:ss";
    Text morning;
    Text evening;
    const std::string name = nameFor("LC_TIME");
    const LocaleFacts facts(countsAsGerman(name) ? "C" : name);
    // A name that is not installed tells nothing; the German forms stand in then too.
    if (!countsAsGerman(name) && facts.known()) {
        date = lettersOf(facts.text(D_FMT));
        time = lettersOf(facts.text(T_FMT));
        morning = facts.text(AM_STR);
        evening = facts.text(PM_STR);
    }
    const bool twentyFour = time.find(u't') == Text::npos;
    answers_ = {{LocaleItem::dateSeparator, separatorOf(date)},
                {LocaleItem::timeSeparator, separatorOf(time)},
                {LocaleItem::twentyFourHours, twentyFour ? u"1" : u"0"},
                {LocaleItem::timeMarkerPosition, time.starts_with(u"t") ? u"1" : u"0"},
                {LocaleItem::shortDate, std::move(date)},
                {LocaleItem::timeFormat, std::move(time)},
                {LocaleItem::morning, std::move(morning)},
                {LocaleItem::evening, std::move(evening)}};
}

std::optional<Text> PosixLocale::info(LocaleItem item) const {
    const auto answer = answers_.find(item);
    return answer == answers_.end() ? std::nullopt : std::optional(answer->second);
}

} // namespace tandolin::platform
