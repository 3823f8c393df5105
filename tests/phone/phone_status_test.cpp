#include "phone/phone_status.h"

#include "support/fresh_program.h"

#include <array>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct PaneScreen : ScriptedScreen {
    std::map<Pane, Text> panes;

    void pane(Pane pane, TextView text) override { panes[pane] = text; }
};

} // namespace

TEST_CASE("SetStatusBarMobile: the three display states of each side") {
    struct Case {
        const char* name;
        bool connected, contacts, calendarRead, contactsRead;
        Text mobile, status, counter;
    };

    const Text none = u" Kein Mobile";
    const Text phone = u" EXAMPLE X1";
    for (const Case& c : std::to_array<Case>({
             {"lost after a read", false, true, true, true, none, u" nicht verbunden",
              u" Mobileeinträge belegt: ?"},
             {"calendar's capacity", true, false, false, true, phone, u" verbunden",
              u" Mobileeinträge belegt: ?/90"},
             {"calendar", true, false, true, false, phone, u" verbunden",
              u" Mobileeinträge belegt: 12/90"},
             {"contacts", true, true, false, true, phone, u" verbunden",
              u" Mobileeinträge belegt: 3/50"},
         })) {
        CAPTURE(c.name);
        const FreshProgram program;
        PaneScreen screen;
        app.ports.screen.window = &screen;
        app.core.GlobalSilentMode = kFalse;
        app.phone.MobileConnected = flagOf(c.connected);
        app.phone.MobileManufacturer = u"EXAMPLE";
        app.phone.MobileModel = u"X1";
        app.phone.vCalRead = flagOf(c.calendarRead);
        app.phone.vCalEntryCount = 12;
        app.phone.vCalMaxEntries = 90;
        app.phone.vCardRead = flagOf(c.contactsRead);
        app.phone.vCardEntryCount = 3;
        app.phone.vCardMaxEntries = 50;
        SetStatusBarMobile(c.contacts);
        CHECK(screen.panes[Pane::Mobile] == c.mobile);
        CHECK(screen.panes[Pane::MobileStatus] == c.status);
        CHECK(screen.panes[Pane::EntryCounter] == c.counter);
        CHECK(screen.panes.size() == 3);
    }
}
