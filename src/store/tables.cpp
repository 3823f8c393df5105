#include "store/tables.h"

#include "core/state.h"
#include "core/trap.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"TDLADODB";
constexpr Date kNoDate{0};

} // namespace

void Tables::clearAll() {
    for (TableCore* table :
         {static_cast<TableCore*>(&RSCalendar), static_cast<TableCore*>(&RSCalendarWork),
          static_cast<TableCore*>(&RSContacts), static_cast<TableCore*>(&RSContactsWork),
          static_cast<TableCore*>(&RSCalendarSave), static_cast<TableCore*>(&RSContactsSave)}) {
        table->setFilter({});
        table->clear();
    }
}

bool Test4ADO() {
    return trapped({kModule, u"Test4ADO"}, false, [](bool& result) {
        if (const auto failure = attempt([] { Table<Calendar>().AddNew(); })) {
            throw Failure(failure_number::kNoTables,
                          tr(ids::kInstallTables) + u"\r\n" + tr(ids::kNoTables) + u"\r\n" +
                              failure->Description,
                          u"Test4ADO");
        }
        app.core.GlobalADOAvailable = kTrue;
        result = true;
    });
}

bool CreateInitAndSetAllRS(void (*logInit)()) {
    return trapped({kModule, u"CreateInitAndSetAllRS"}, false, [logInit](bool& result) {
        if (!Test4ADO()) {
            return;
        }
        logInit();
        tables.clearAll();
        InitCalendarRS(tables.RSCalendar);
        InitCalendarRS(tables.RSCalendarWork);
        vCardInitRS(tables.RSContacts);
        vCardInitRS(tables.RSContactsWork);
        InitCalendarRS(tables.RSCalendarSave);
        vCardInitRS(tables.RSContactsSave);
        app.ports.screen.window->refresh(Grid::GridEXCal);
        app.ports.screen.window->refresh(Grid::GridEXCard);
        result = true;
    });
}

void InitCalendarRS(Table<Calendar>& table) {
    table.clear();
}

void vCardInitRS(Table<Contact>& table) {
    table.clear();
}

void vCalCreateNewRecord(Table<Calendar>& table) {
    // A new row is made once and copied from then on: 60 assignments a row cost more than the copy.
    static const Row fresh = [] {
        Table<Calendar> one;
        one.AddNew();
        for (const auto field :
             {cal::PIM, cal::Mobile, cal::EndDateFlag, cal::DTStartFlag, cal::AAlarmFlag,
              cal::AnniversaryStatus, cal::DAlarmFlag, cal::MeetingStatus, cal::MemoStatus,
              cal::PhoneCallStatus, cal::IsChanged, cal::PIMNew, cal::noPhonecall, cal::AllDayEvent,
              cal::creafromMob}) {
            one.set(field, false);
        }
        for (const auto field : {cal::StartDate, cal::EndDate, cal::EndTime, cal::DTStart,
                                 cal::AAlarm, cal::DAlarm, cal::Start, cal::DTEnd, cal::PIMRecPatt,
                                 cal::MobileRecPattern, cal::oldStartDate, cal::altesStartDate}) {
            one.set(field, kNoDate);
        }
        for (const auto field : {cal::Typ, cal::Text, cal::Description, cal::Summary,
                                 cal::ChangeString, cal::UID, cal::PIMText, cal::EntryPath,
                                 cal::EntryFile, cal::PimRecPattString, cal::RecPatternString}) {
            one.set(field, {});
        }
        one.set(cal::StartTime, u"0");
        one.set(cal::EntryID, u"-1");
        one.set(cal::SubType, -1);
        one.set(cal::EntryType, 0);
        one.set(cal::EntrySource, 0);
        one.set(cal::Recordset, u"RSCalendar");
        one.set(cal::TransferMode, 1);
        one.set(cal::StartEndDiff, std::int64_t{0});
        vCalClearRecurrance(one);
        return one.row();
    }();
    trapped({kModule, u"vCalCreateNewRecord"}, [&table] { table.AddCopy(fresh); });
}

void vCalClearRecurrance(Table<Calendar>& table) {
    trapped({kModule, u"vCalClearRecurrance"}, [&table] {
        table.set(cal::IsRecurring, false);
        for (const auto field :
             {cal::RecurrenceFrequenz, cal::RecurrenceType, cal::Serie, cal::ModKey}) {
            table.set(field, {});
        }
        for (const auto field : {cal::RecurrenceDuration, cal::RecurrenceIntervall,
                                 cal::WeekDayMask, cal::DayOfMonth}) {
            table.setNull(field);
        }
    });
}

void vCardCreateNewRecord(Table<Contact>& table) {
    trapped({kModule, u"vCardCreateNewRecord"}, [&table] {
        table.AddNew();
        for (const auto field :
             {con::PIM, con::Mobile, con::Categories, con::IsChanged, con::UTF8Flag, con::PIMNew}) {
            table.set(field, false);
        }
        for (const auto field : {con::LastName,
                                 con::FirstName,
                                 con::Company,
                                 con::Phone,
                                 con::Street,
                                 con::ZipCode,
                                 con::City,
                                 con::PhoneWork,
                                 con::PhoneMobile,
                                 con::Fax,
                                 con::eMail,
                                 con::Country,
                                 con::URL,
                                 con::ChangeString,
                                 con::MobileID,
                                 con::UID,
                                 con::EntryPath,
                                 con::EntryFile,
                                 con::CategoriesText,
                                 con::PIMLastName,
                                 con::PIMFirstName,
                                 con::PIMCompany,
                                 con::PIMStreet,
                                 con::PIMCity,
                                 con::PIMZipCode,
                                 con::PIMCountry,
                                 con::PIMeMail,
                                 con::PIMURL,
                                 con::PIMPhone,
                                 con::PIMPhoneWork,
                                 con::PIMPhoneMobile,
                                 con::PIMFax,
                                 con::MobileCategoriesText}) {
            table.set(field, {});
        }
        table.set(con::EntryType, 0);
        table.set(con::Recordset, u"RSContacts");
        table.set(con::TransferMode, 1);
    });
}

void ClearRecordSet(TableCore& table) {
    trapped({kModule, u"ClearRecordSet"}, [&table] { table.clear(); });
}

bool vCalClearSerieRecords(Table<Calendar>& /*table*/, TextView /*key*/) {
    return true;
}

} // namespace tandolin
