#include "core/instance_words.h"

#include "support/fresh_program.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Words : InstanceLink {
    std::deque<Text> words;

    bool previousInstance() override { return false; }

    void activate() override {}

    void kill() override {}

    std::optional<Text> received() override {
        if (words.empty()) {
            return std::nullopt;
        }
        const Text word = words.front();
        words.pop_front();
        return word;
    }
};

struct Window : ScriptedScreen {
    int focused = 0;

    void focusMain() override { ++focused; }
};

struct Program : FreshProgram {
    Words link;
    Window window;

    explicit Program(const Text& caller) {
        app.ports.instance = &link;
        app.ports.screen.window = &window;
        app.core.GlobalCallerName = caller;
        app.status.Start(u"T");
    }
};

} // namespace

TEST_CASE("A word from another instance") {
    struct Case {
        const char* name;
        Text caller, word;
        bool acknowledged, ends;
    };

    for (const Case& c : std::to_array<Case>({
             {"KILL from the owner's side", u"OL", u"KILL", true, true},
             {"in any case", u"OL", u"kill", true, true},
             {"started by somebody else", u"OLX", u"KILL", true, false},
             {"started by nobody", u"", u"KILL", true, false},
             // Wanted: it never matches, since the command is compared in upper case.
             {"IsTDL", u"OL", u"IsTDL", false, false},
             {"unknown", u"OL", u"KILLER", false, false},
         })) {
        CAPTURE(c.name);
        Program program(c.caller);
        CHECK(Form_LinkExecute(c.word) == c.acknowledged);
        CHECK(app.run.cancelled == c.ends);
        CHECK(app.status.GetState() == !c.ends);
        CHECK(program.screen.boxesShown.empty()); // nobody is asked
    }
}

TEST_CASE("Words are heard whenever an action lets input in") {
    Program program(u"OL");
    program.link.words = {u"ACTIVATE", u"nonsense"};
    app.status.SetText(u"1/9");
    CHECK(program.window.focused == 1);
    CHECK(app.status.GetState());
    program.link.words = {u"KILL"};
    CHECK_FALSE(app.status.GetState());
    CHECK(app.run.cancelled);
}
