#include "store/row_operations.h"

#include "core/trap.h"
#include "store/common_fields.h"

#include <type_traits>

namespace tandolin {

namespace {

/// The one pattern of all row operations: each row that holds the key, cursor restored.
template <class L, class Change>
void forEachRow(TextView proc, Table<L>& table, Field<L, Text> keyField, TextView key,
                Change&& change) {
    if (key.empty()) {
        return;
    }
    const Text wanted(key); // the change may overwrite the text that the key views
    trapped({u"TDLADODB", proc}, [&] {
        const KeepPosition keep(table);
        table.MoveFirst();
        while (table.Find(keyField, wanted)) {
            change();
            table.MoveNext();
        }
    });
}

template <class L, class Change>
void forEachEntry(TextView proc, Table<L>& table, TextView key, Change&& change) {
    forEachRow(proc, table, Common<L>::EntryID, key, change);
}

} // namespace

template <class L>
void MobileEntryClear(Table<L>& table, TextView key) {
    forEachEntry(u"MobileEntryClear", table, key, [&] { table.set(Common<L>::Mobile, false); });
}

template <class L>
void PIMEntryClear(Table<L>& table, TextView key) {
    forEachEntry(u"PIMEntryClear", table, key, [&] { table.set(Common<L>::PIM, false); });
}

template <class L>
void MobileAndPIMClear(Table<L>& table, TextView key) {
    forEachEntry(u"MobileAndPIMClear", table, key, [&] {
        table.set(Common<L>::Mobile, false);
        table.set(Common<L>::PIM, false);
    });
}

template <class L>
void PIMEntrySet(Table<L>& table, TextView key) {
    forEachEntry(u"PIMEntrySet", table, key, [&] { table.set(Common<L>::PIM, true); });
}

void SetEntryKind(Table<Calendar>& table, TextView key, TextView typ) {
    forEachEntry(u"SetEntryKind", table, key, [&] {
        table.set(cal::Typ, typ);
        table.set(cal::MemoStatus, typ.empty());
        table.set(cal::MeetingStatus, typ == u"1");
        table.set(cal::AnniversaryStatus, typ == u"2");
        table.set(cal::PhoneCallStatus, typ == u"3");
    });
}

template <class L>
void SetEntryID(Table<L>& table, TextView key, TextView entryID) {
    forEachEntry(u"SetEntryID", table, key, [&] { table.set(Common<L>::EntryID, entryID); });
}

void SetSubType(Table<Calendar>& table, TextView key, std::int32_t subType) {
    forEachEntry(u"SetSubType", table, key, [&] { table.set(cal::SubType, subType); });
}

template <class L>
void SetUID(Table<L>& table, TextView key, TextView uid) {
    forEachEntry(u"SetUID", table, key, [&] { table.set(Common<L>::UID, uid); });
}

void SetMobileID(Table<Contact>& table, TextView key, TextView mobileID) {
    forEachEntry(u"SetMobileID", table, key, [&] { table.set(con::MobileID, mobileID); });
}

template <class L>
void SetEntryType(Table<L>& table, TextView key, std::int32_t entryType) {
    forEachEntry(u"SetEntryType", table, key, [&] { table.set(Common<L>::EntryType, entryType); });
}

void SetWeekDayMask(Table<Calendar>& table, TextView key, std::int64_t mask) {
    forEachEntry(u"SetWeekDayMask", table, key, [&] { table.set(cal::WeekDayMask, mask); });
}

template <class L>
void SetUIDandEntryID(Table<L>& table, TextView key, bool byUID, TextView uid, TextView entryID) {
    forEachRow(u"SetUIDandEntryID", table, byUID ? Common<L>::UID : Common<L>::EntryID, key, [&] {
        table.set(Common<L>::UID, uid);
        if (table[Common<L>::Mobile]) {
            table.set(Common<L>::EntryID, entryID);
        }
    });
}

template <class L>
bool PositionOnEntry(Table<L>& table, TextView key) {
    return trapped({u"TDLADODB", u"PositionOnEntry"}, false, [&](bool& found) {
        const Bookmark mark = table.bookmark();
        table.MoveFirst();
        found = !key.empty() && table.Find(Common<L>::EntryID, key);
        if (!found) {
            table.goTo(mark);
        }
    });
}

void SetAlarmOfEntry(Table<Calendar>& table, TextView key, bool on) {
    forEachEntry(u"SetAlarmOfEntry", table, key, [&] {
        const Date moment = on ? table[cal::Start] : Date{0};
        table.set(cal::DAlarm, moment);
        table.set(cal::AAlarm, moment);
        for (const auto flag : {cal::Alarm, cal::DAlarmFlag, cal::AAlarmFlag}) {
            table.set(flag, on);
        }
    });
}

template void MobileEntryClear(Table<Calendar>&, TextView);
template void MobileEntryClear(Table<Contact>&, TextView);
template void PIMEntryClear(Table<Calendar>&, TextView);
template void PIMEntryClear(Table<Contact>&, TextView);
template void MobileAndPIMClear(Table<Calendar>&, TextView);
template void MobileAndPIMClear(Table<Contact>&, TextView);
template void PIMEntrySet(Table<Calendar>&, TextView);
template void PIMEntrySet(Table<Contact>&, TextView);
template void SetEntryID(Table<Calendar>&, TextView, TextView);
template void SetEntryID(Table<Contact>&, TextView, TextView);
template void SetUID(Table<Calendar>&, TextView, TextView);
template void SetUID(Table<Contact>&, TextView, TextView);
template void SetEntryType(Table<Calendar>&, TextView, std::int32_t);
template void SetEntryType(Table<Contact>&, TextView, std::int32_t);
template void SetUIDandEntryID(Table<Calendar>&, TextView, bool, TextView, TextView);
template void SetUIDandEntryID(Table<Contact>&, TextView, bool, TextView, TextView);
template bool PositionOnEntry(Table<Calendar>&, TextView);
template bool PositionOnEntry(Table<Contact>&, TextView);

} // namespace tandolin
