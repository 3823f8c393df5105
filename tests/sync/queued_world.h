#pragma once

// A phone and an organizer that were read, and a user whose changes wait for a transfer, of either
// kind of entries. The steps are what grid and editor do with the row of an entry.

#include "organizer/removal.h"
#include "phone/contact_writing.h"
#include "phone/phone_writing.h"
#include "store/common_fields.h"
#include "sync/sync_world.h"
#include "sync/transfer_table.h"

#include <doctest/doctest.h>

namespace tandolin::testing {

template <class L>
struct QueuedWorld : SyncWorld {
    using F = Common<L>;

    Table<L>& table;
    Table<L>& queue;

    QueuedWorld(Table<L>& rows, Table<L>& waiting) : table(rows), queue(waiting) {
        app.settings.SaveTyp = 2;
        app.phone.MobileConnected = kTrue;
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

} // namespace tandolin::testing
