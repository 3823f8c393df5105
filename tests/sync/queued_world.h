#pragma once

// A phone and an organizer that were read, and a user whose changes wait for a transfer, of either
// kind of entries. The steps are what grid and editor do with the row of an entry.

#include "organizer/calendar_writing.h"
#include "organizer/contact_writing.h"
#include "organizer/removal.h"
#include "phone/contact_writing.h"
#include "phone/phone_writing.h"
#include "store/common_fields.h"
#include "sync/sync_world.h"
#include "sync/transfer.h"
#include "sync/transfer_table.h"

#include <doctest/doctest.h>

namespace tandolin::testing {

/// The tables, counts and procedures of each kind, under one name each.
template <class L>
struct Routines;

template <>
struct Routines<Calendar> {
    static constexpr auto& table = tables.RSCalendar;
    static constexpr auto& queue = tables.RSCalendarSave;
    static constexpr auto& onPhone = app.phone.vCalEntryCount;
    static constexpr auto& inOrganizer = app.organizer.vCalPIMCount;
    static constexpr auto& phoneRead = app.phone.vCalRead;
    static constexpr auto name = cal::Text;
    static constexpr auto send = SendSingleEntry;
    static constexpr auto write = WriteOutlookEntry;
    static constexpr auto sync = SilentAutoSyncvCal;
};

template <>
struct Routines<Contact> {
    static constexpr auto& table = tables.RSContacts;
    static constexpr auto& queue = tables.RSContactsSave;
    static constexpr auto& onPhone = app.phone.vCardEntryCount;
    static constexpr auto& inOrganizer = app.organizer.vCardPIMCount;
    static constexpr auto& phoneRead = app.phone.vCardRead;
    static constexpr auto name = con::LastName;
    static constexpr auto write = vCardWriteOutookEntry;
    static constexpr auto sync = SilentAutoSyncvCard;

    static bool send(Table<Contact>& row) { return SendSinglevCardEntry(row, true); }
};

template <class L>
struct QueuedWorld : SyncWorld {
    using F = Common<L>;
    using R = Routines<L>;

    Table<L>& table = R::table;
    Table<L>& queue = R::queue;

    QueuedWorld() {
        app.settings.SaveTyp = 2;
        app.phone.MobileConnected = kTrue;
    }

    /// The table stands on the entry of this text, or the contact of this last name.
    void select(TextView name) {
        table.MoveFirst();
        REQUIRE(table.Find(R::name, name));
    }

    /// The row goes to each side that it is on.
    void write(bool isNew = false) {
        if (table[F::Mobile]) {
            CHECK(R::send(table));
        }
        if (table[F::PIM]) {
            CHECK(R::write(table, isNew));
        }
    }

    void tickOrganizer() {
        table.set(F::PIM, true);
        CHECK(R::write(table, true));
    }

    void tickPhone() {
        table.set(F::Mobile, true);
        CHECK(R::send(table));
    }

    bool transfer() { return TransfertoMobile(tables.RSContactsSave, tables.RSCalendarSave); }

    /// A run as the next start would do it: whatever was in memory is forgotten.
    void runOnce() {
        app.settings.SaveTyp = 1;
        ClearRecordSet(table);
        app.phone.vCalRead = app.phone.vCardRead = kFalse;
        app.organizer.vCalPIMRead = app.organizer.vCardPIMRead = kFalse;
        app.phone.vCardEntryCount = 0;
        app.organizer.vCardPIMCount = 0;
        run(R::sync);
        CHECK_FALSE(app.run.phoneFailed);
        CHECK_FALSE(app.run.organizerFailed);
        CHECK_FALSE(app.run.entriesFailed);
    }

    bool removeFromOrganizer() {
        table.set(F::PIM, false);
        return RemoveEntryFromOutlook(table);
    }

    bool removeFromPhone() {
        table.set(F::Mobile, false);
        return RemoveEntryFromMobile(app.phone.MobileConnected, app.phone.GlobalMobilePaths, table);
    }

    void untickOrganizer() { CHECK(removeFromOrganizer()); }

    void untickPhone() { CHECK(removeFromPhone()); }

    void remove() {
        const std::int32_t sides = table[F::EntryType];
        table.set(F::PIM, false);
        table.set(F::Mobile, false);
        if (sides != CONST_ENTRY_vCAL_PIM) {
            untickPhone();
        }
        if (sides != CONST_ENTRY_vCAL_MOBILE) {
            untickOrganizer();
        }
    }

    /// What a transfer would do, row by row.
    [[nodiscard]] std::string routes() const {
        static constexpr std::array kNames{"-", "send", "clear", "write", "delete"};
        std::string all;
        for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
            all += all.empty() ? "" : " ";
            all += kNames.at(static_cast<std::size_t>(transferActionOf(queue)));
        }
        return all;
    }

    [[nodiscard]] bool toolShown() const {
        const auto tool = screen.shownTools.find(u"TDLTools/TDLSave");
        return tool != screen.shownTools.end() && tool->second;
    }
};

/// Both sides before, what the user does with the entry `World::kEntry`, what then waits, and both
/// sides behind the transfer.
template <class World>
struct UserAction {
    const char* name;
    Lines phone;
    Lines organizer;
    void (*steps)(World& world);
    const char* routes;
    Lines phoneAfter;
    Lines organizerAfter;
};

/// The entry on either side, and as it is there with `World::kEdited`.
struct EntryOnSides {
    Lines phone;
    Lines organizer;
    Lines phoneEdited;
    Lines organizerEdited;
    Lines phoneNew; ///< ticked, under the number that is free
    Lines organizerNew;
    Lines organizerNewEdited;
};

/// What ends alike for both kinds.
template <class World>
std::vector<UserAction<World>> actionsOn(const EntryOnSides& e) {
    const Lines none;
    const auto edit = [](World& w) { w.edit(World::kEdited); };
    const auto remove = [](World& w) { w.remove(); };
    return {
        {"edit, phone", e.phone, none, edit, "send", e.phoneEdited, none},
        {"edit, organizer", none, e.organizer, edit, "write", none, e.organizerEdited},
        {"edit, both", e.phone, e.organizer, edit, "send write", e.phoneEdited, e.organizerEdited},
        {"tick, phone", none, e.organizer, [](World& w) { w.tickPhone(); }, "send", e.phoneNew,
         e.organizer},
        {"tick, organizer", e.phone, none, [](World& w) { w.tickOrganizer(); }, "write", e.phone,
         e.organizerNew},
        {"untick, phone", e.phone, e.organizer, [](World& w) { w.untickPhone(); }, "clear", none,
         e.organizer},
        {"untick, organizer", e.phone, e.organizer, [](World& w) { w.untickOrganizer(); }, "delete",
         e.phone, none},
        {"delete, phone", e.phone, none, remove, "clear", none, none},
        {"delete, organizer", none, e.organizer, remove, "delete", none, none},
        {"delete, both", e.phone, e.organizer, remove, "clear delete", none, none},
        {"edit and untick the phone", e.phone, e.organizer,
         [](World& w) {
             w.table.set(World::F::Mobile, false);
             w.edit(World::kEdited);
             w.untickPhone();
         },
         "write clear", none, e.organizerEdited},
        {"edit and untick the organizer", e.phone, e.organizer,
         [](World& w) {
             w.table.set(World::F::PIM, false);
             w.edit(World::kEdited);
             w.untickOrganizer();
         },
         "send delete", e.phoneEdited, none},
        {"a later edit stands in for the earlier", e.phone, e.organizer,
         [](World& w) {
             w.edit(World::kInBetween);
             w.edit(World::kEdited);
         },
         "send write", e.phoneEdited, e.organizerEdited},
        {"an edit that is removed again", e.phone, e.organizer,
         [](World& w) {
             w.edit(World::kEdited);
             w.remove();
         },
         "clear delete", none, none},
        {"removed twice", e.phone, e.organizer,
         [](World& w) {
             w.remove();
             w.remove();
         },
         "clear delete", none, none},
        {"a queued creation is edited", e.phone, none,
         [](World& w) {
             w.tickOrganizer();
             w.edit(World::kEdited);
         },
         "write send", e.phoneEdited, e.organizerNewEdited},
        {"a queued creation is taken back", e.phone, none,
         [](World& w) {
             w.tickOrganizer();
             w.untickOrganizer();
         },
         "", e.phone, none},
    };
}

template <class World>
void checkActions(const std::vector<UserAction<World>>& actions) {
    for (const UserAction<World>& action : actions) {
        CAPTURE(action.name);
        World world(action.phone, action.organizer);
        const auto writes = world.writes();
        world.select(World::kEntry);
        action.steps(world);
        CHECK(world.routes() == action.routes);
        CHECK(world.toolShown() == !world.queue.isEmpty());
        CHECK(world.writes() == writes); // nothing went out yet
        CHECK(world.transfer());
        CHECK(world.onPhone() == action.phoneAfter);
        CHECK(world.inOrganizer() == action.organizerAfter);
        CHECK(world.queue.isEmpty());
        CHECK_FALSE(world.toolShown());
        CHECK(app.core.GlobalProgramFehler == 0);
        // An entry that is left knows of its writes: the next edit begins anew.
        const bool left = world.table[World::F::PIM] || world.table[World::F::Mobile];
        CHECK_FALSE((left && world.table[World::F::IsChanged]));
        CHECK_FALSE((left && world.table.isEdited()));
    }
}

/// The counts follow the queue, each entry once; `others` is another entry of the organizer.
template <class World>
void checkCounts(const Lines& onPhone, const Lines& others) {
    using R = typename World::R;
    World world(onPhone, others);
    CHECK(R::onPhone == 1);
    CHECK(R::inOrganizer == 1);
    world.select(World::kEntry);
    world.tickOrganizer();
    world.tickOrganizer();
    CHECK(R::inOrganizer == 2);
    world.remove();
    world.remove();
    CHECK(R::inOrganizer == 1);
    CHECK(R::onPhone == 0);
    CHECK(R::phoneRead == kTrue);
}

} // namespace tandolin::testing
