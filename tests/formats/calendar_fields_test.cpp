#include "formats/calendar_codec.h"
#include "formats/row_text.h"
#include "support/fresh_program.h"

#include <map>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("the rule's fields by kind and model") {
    struct Case {
        Text type, model, fields;
    };

    for (const Case& c : std::to_array<Case>({
             {u"W", u"T68", u"W 1 '-' -"},
             {u"W", u"Phone T15", u"D 7 '-' -"},
             {u"M", u"B55", u"M 1 '' 21"},
             {u"Y", u"", u"Y 1 'D' -"},
             {u"Y", u"T15", u"Y 1 '' -"},
             {u"X", u"", u"- - '-' -"},
         })) {
        CAPTURE(c.type);
        CAPTURE(c.model);
        const FreshProgram program;
        app.phone.MobileModel = c.model;
        Table<Calendar> table;
        vCalCreateNewRecord(table);
        table.setNull(cal::RecurrenceFrequenz);
        table.setNull(cal::ModKey);
        table.set(cal::RecurrenceType, c.type);
        table.set(cal::Start, at(2026, 11, 21, 9, 0));
        vCalSetSerieFields(table);
        const auto number = [](const auto& value) { return value ? decimal(*value) : Text(u"-"); };
        const Text fields = Text(table.get(cal::RecurrenceFrequenz).value_or(u"-")) + u' ' +
                            number(table.get(cal::RecurrenceIntervall)) + u" '" +
                            Text(table.get(cal::ModKey).value_or(u"-")) + u"' " +
                            number(table.get(cal::DayOfMonth));
        CHECK(fields == c.fields);
    }
}

TEST_CASE("characters of a phone number") {
    for (const auto& [written, stripped] :
         std::map<Text, Text>{{u"", u""},
                              {u"+49*#?0123456789", u"+49*#?0123456789"},
                              {u"Anna 030 12-3", u"030123"},
                              {u"\u0663", u""}}) {
        CAPTURE(written);
        CHECK(check4PhoneCallChar(written) == (written != stripped));
        Text text = written;
        StripPhoneCallChars(text);
        CHECK(text == stripped);
    }
}

namespace {

/// A row with a value of its own in every field, and another with different ones.
void fill(Table<Calendar>& table, int number) {
    vCalCreateNewRecord(table);
    const bool truth = number % 2 != 0;
    for (const auto field : {cal::PIM, cal::Mobile, cal::MemoStatus, cal::MeetingStatus,
                             cal::AnniversaryStatus, cal::PhoneCallStatus, cal::PIMNew}) {
        table.set(field, truth);
    }
    for (const auto field : {cal::EntryID, cal::Text, cal::Typ, cal::EntryFile, cal::UID,
                             cal::PIMText, cal::Description}) {
        table.set(field, decimal(number));
    }
    for (const auto field : {cal::Start, cal::DTEnd, cal::EndDate, cal::EndTime}) {
        table.set(field, Date{static_cast<double>(number)});
    }
    table.set(cal::SubType, number + 1);
    table.set(cal::EntryType, 1);
}

/// Names of the fields in which two rows differ.
std::string changedFields(const Table<Calendar>& table, const Row& before) {
    std::string names;
    for (std::size_t i = 0; i < table.fields().size(); ++i) {
        const CellType type = table.fields()[i].type;
        const bool same = table.row().isNull(i) == before.isNull(i) &&
                          (type == CellType::text   ? table.row().text(i) == before.text(i)
                           : type == CellType::date ? table.row().real(i) == before.real(i)
                                                    : table.row().number(i) == before.number(i));
        names += same ? "" : toUtf8(table.fields()[i].name) + " ";
    }
    return names;
}

} // namespace

TEST_CASE("after a match the row takes the other side's fields and no others") {
    const FreshProgram program;
    Table<Calendar> target;
    Table<Calendar> source;
    fill(source, 17);
    fill(target, 4);
    const Row before = target.row();
    SUBCASE("phone") {
        vCalSyncMobileEntry(target, source);
        CHECK(changedFields(target, before) ==
              "Mobile Typ Text EndDate EndTime AnniversaryStatus EntryID MeetingStatus "
              "PhoneCallStatus DTEnd SubType EntryType EntryFile ");
        CHECK(target[cal::SubType] == 17);
    }
    SUBCASE("organizer") {
        vCalSyncOutlookEntry(target, source);
        CHECK(changedFields(target, before) == "PIM EntryType UID PIMText PIMNew ");
    }
    CHECK(target[cal::EntryType] == CONST_ENTRY_vCAL_BOTH);
    source.set(cal::EntryID, u"17a"); // a key that is no number is reported
    const auto number = target[cal::SubType];
    vCalSyncMobileEntry(target, source);
    CHECK(target[cal::SubType] == number);
    CHECK(app.run.failures == 1);
}
