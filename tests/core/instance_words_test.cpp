#include "core/instance_words.h"

#include "support/fake_system.h"
#include "support/fresh_program.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Program : FreshProgram {
    FakeInstances link;

    explicit Program(const Text& caller) {
        app.ports.instance = &link;
        app.core.GlobalCallerName = caller;
        app.status.Start(u"T");
    }
};

} // namespace

TEST_CASE("A word from another instance") {
    for (const auto& [name, caller, word, acknowledged, ends] :
         std::to_array<std::tuple<const char*, Text, Text, bool, bool>>({
             {"KILL from the owner's side", u"OL", u"KILL", true, true},
             {"in any case", u"OL", u"kill", true, true},
             {"started by somebody else", u"OLX", u"KILL", true, false},
             // Wanted: it never matches, since the command is compared in upper case.
             {"IsTDL", u"OL", u"IsTDL", false, false},
         })) {
        CAPTURE(name);
        Program program(caller);
        CHECK(Form_LinkExecute(word) == acknowledged);
        CHECK(app.run.cancelled == ends);
        CHECK(app.status.GetState() == !ends);
        CHECK(program.screen.boxesShown.empty()); // nobody is asked
    }
}

TEST_CASE("Words are heard whenever an action lets input in") {
    Program program(u"OL");
    program.link.words = {u"ACTIVATE", u"nonsense"};
    app.status.SetText(u"1/9");
    CHECK(program.link.words.empty());
    CHECK(app.status.GetState());
    program.link.words = {u"KILL"};
    CHECK_FALSE(app.status.GetState());
    CHECK(app.run.cancelled);
}
