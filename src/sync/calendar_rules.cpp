#include "sync/calendar_rules.h"

#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "sync/pairing.h"

#include <algorithm>
#include <array>

namespace tandolin {

namespace {

using Rows = const Table<Calendar>&;

constexpr TextView kPhoneCallTyp = u"3";
/// What the phone's form writes in other words than itself.
constexpr TextView kNotPlain = u"=;\\";

bool meetsAnyOrganizerRow(TextView typ) {
    return typ.empty() || typ == u"2" || typ == u"3";
}

bool bothSeriesOrNot(Rows main, Rows candidate) {
    return main[cal::IsRecurring] == candidate[cal::IsRecurring];
}

bool seriesTypesAgree(Rows main, Rows candidate) {
    return sameText(main[cal::RecurrenceType], candidate[cal::RecurrenceType]);
}

bool originsMayMeet(Rows main, Rows candidate) {
    return main[cal::EntryType] != candidate[cal::EntryType] ||
           main[cal::EntryType] == CONST_ENTRY_vCAL_BOTH;
}

bool anchorsAgree(Rows main, Rows candidate) {
    return !candidate[cal::IsRecurring] ||
           sameText(main[cal::PimRecPattString], candidate[cal::PimRecPattString]);
}

bool startTimesAgree(Rows main, Rows candidate) {
    return sameText(main[cal::StartTime], candidate[cal::StartTime]);
}

bool leadingAgree(TextView main, std::size_t mainLength, TextView candidate,
                  std::size_t candidateLength) {
    return !main.empty() && !candidate.empty() &&
           sameText(main.substr(0, mainLength), candidate.substr(0, candidateLength));
}

struct Rule {
    bool (*holds)(Rows main, Rows candidate);
    TextView otherwise;
};

constexpr std::array kSameEntryRules{
    Rule{kindsAgree, u"the kinds differ"},
    Rule{bothSeriesOrNot, u"one is a series, the other is not"},
    Rule{seriesTypesAgree, u"the series repeat differently"},
    Rule{originsMayMeet, u"both come from the same side"},
    Rule{anchorsAgree, u"the series begin on different days"},
    Rule{startTimesAgree, u"the times differ"},
    Rule{textsAgree, u"the texts differ"},
    Rule{vcalCheckbeforecompare, u"one of them is paired with another entry"}};

/// One form of what differs only in case, trailing blanks or line breaks.
Text comparable(TextView text) {
    while (text.ends_with(u' ')) {
        text.remove_suffix(1);
    }
    Text form = upper(text);
    for (std::size_t at = 0; (at = form.find(u'\r', at)) != Text::npos;) {
        const bool pair = at + 1 < form.size() && form[at + 1] == u'\n';
        form.replace(at, pair ? 2 : 1, u"\n");
    }
    return form;
}

/// The text after one pass through the phone's writer and reader, which do not give every
/// character back. Empty where the row cannot be written.
Text textReadBack(Rows row) {
    Table<Calendar> sent;
    sent.AddNew();
    CopyFromRecordset(sent, row);
    Table<Calendar> read;
    vCalCreateNewRecord(read);
    const auto failure = attempt([&] {
        vcalTextCheck(sent);
        if (const auto unread = readCalendarObject(read, calendarObject(sent))) {
            throw Failure(*unread);
        }
    });
    return failure ? Text() : Text(read[cal::Text]);
}

std::size_t lengthOnPhone(Rows row) {
    return row[cal::Typ] == kPhoneCallTyp ? static_cast<std::size_t>(Phonecall_Len(row[cal::Text]))
                                          : kPhoneTextLength;
}

} // namespace

std::int16_t Phonecall_Len(TextView text) {
    return text.starts_with(u'+') ? 41 : 40;
}

bool kindsAgree(Rows main, Rows candidate) {
    const TextView mainTyp = main[cal::Typ];
    const TextView candidateTyp = candidate[cal::Typ];
    return mainTyp == candidateTyp ||
           (main[cal::Mobile] && meetsAnyOrganizerRow(mainTyp) && candidateTyp.empty()) ||
           (candidate[cal::Mobile] && meetsAnyOrganizerRow(candidateTyp) && mainTyp.empty());
}

bool textsAgree(Rows main, Rows candidate) {
    const TextView mainText = main[cal::Text];
    const TextView candidateText = candidate[cal::Text];
    if (mainText.empty() && candidateText.empty()) {
        return true;
    }
    const auto mainLimit = static_cast<std::size_t>(Phonecall_Len(mainText));
    const auto candidateLimit = static_cast<std::size_t>(Phonecall_Len(candidateText));
    const bool mainIsCall = main[cal::Typ] == kPhoneCallTyp;
    const bool candidateIsCall = candidate[cal::Typ] == kPhoneCallTyp;
    // Wanted: a candidate that is a call enters this case whatever the lengths, a main row only
    // with both texts at their limits.
    if (candidateIsCall ||
        (mainIsCall && mainText.size() >= mainLimit && candidateText.size() >= candidateLimit)) {
        return leadingAgree(mainText, mainLimit, candidateText, candidateLimit);
    }
    if (!mainIsCall && mainText.size() >= kPhoneTextLength &&
        candidateText.size() >= kPhoneTextLength) {
        return leadingAgree(mainText, kPhoneTextLength, candidateText, kPhoneTextLength);
    }
    return sameText(mainText, candidateText);
}

bool vcalCheckbeforecompare(Rows main, Rows candidate) {
    return mayBeMerged(main, candidate, cal::EntryType, {cal::UID, cal::EntryID});
}

bool sameEntry(Rows main, Rows candidate) {
    return firstFailedRule(main, candidate).empty();
}

TextView firstFailedRule(Rows main, Rows candidate) {
    const auto* const failed = std::ranges::find_if(
        kSameEntryRules, [&](const Rule& rule) { return !rule.holds(main, candidate); });
    return failed == kSameEntryRules.end() ? TextView{} : failed->otherwise;
}

bool EntryTypeCheck(std::int16_t SyncTermine, Rows table) {
    constexpr int kAll = 32;
    if ((SyncTermine & kAll) != 0) {
        return true;
    }
    constexpr std::array<TextView, 4> kKinds{u"", u"1", u"2", u"3"};
    const auto* const kind = std::ranges::find(kKinds, table[cal::Typ]);
    return kind != kKinds.end() && (SyncTermine >> (kind - kKinds.begin()) & 1) != 0;
}

std::optional<Text> textChangedOnPhone(Rows row) {
    const TextView text = row[cal::Text];
    // Letters beyond ASCII travel encoded and come back; halves of pairs are left to the reader.
    const bool isPlain = std::ranges::all_of(text, [](char16_t c) {
        const bool isLetter = c >= u'\u00A0' && (c < 0xD800 || c > 0xDFFF);
        return isLetter || (c >= u' ' && c <= u'~' && kNotPlain.find(c) == TextView::npos);
    });
    if (isPlain) {
        return std::nullopt;
    }
    Text back = textReadBack(row);
    const bool same = back.empty() || comparable(back) == comparable(textOnPhone(row));
    return same ? std::nullopt : std::optional(std::move(back));
}

bool textsEqualOnPhone(Rows organizer, Rows phone) {
    const Text wanted = comparable(phone[cal::Text]);
    const TextView text = organizer[cal::Text];
    if (phone[cal::Typ] != kPhoneCallTyp) {
        return comparable(textOnPhone(organizer)) == wanted ||
               comparable(textReadBack(organizer)) == wanted;
    }
    Text digits(text);
    StripPhoneCallChars(digits);
    const auto cut = [](TextView number) {
        return comparable(number.substr(0, static_cast<std::size_t>(Phonecall_Len(number))));
    };
    return cut(text) == wanted || (!digits.empty() && cut(digits) == wanted);
}

void vcalTextCheck(Table<Calendar>& table) {
    trapped({u"Allgemein", u"vcalTextCheck"}, [&table] {
        if (table[cal::Text].size() > lengthOnPhone(table)) {
            const Text cut = textOnPhone(table);
            table.set(cal::Text, cut);
            table.set(cal::Description, cut);
        }
    });
}

Text textOnPhone(Rows table) {
    return Text(table[cal::Text].substr(0, lengthOnPhone(table)));
}

} // namespace tandolin
