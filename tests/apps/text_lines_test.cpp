#include "apps/run_folder.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("A text with line breaks: one line a row, in its columns, and its loss is told") {
    RunFolder folder;
    folder.item("kino", "DTSTART:20270305T200000Z\r\nDTEND:20270305T220000Z\r\n"
                        "SUMMARY:line one\\nline two\r\n");
    const Outcome run = folder.run({"VCAL", "--accept-empty-phone"});
    CHECK(run.exit == 0);
    CHECK(run.out.find(" line one line two") != std::string::npos);
    CHECK(run.out.find("cut: organizer calendar/kino.ics line one line two") != std::string::npos);
    CHECK(run.out.find("the phone gives it back as 'line one ine two") != std::string::npos);
    const std::string log = folder.tree("home").begin()->second;
    CHECK(log.find("line one line two") != std::string::npos);
    CHECK(log.find("\nline two") == std::string::npos);
}

TEST_CASE("A text that comes back as it was has no note") {
    RunFolder folder;
    folder.item("kino", "DTSTART:20270305T200000Z\r\nDTEND:20270305T220000Z\r\n"
                        "SUMMARY:Gr\xC3\xB6\xC3\x9F"
                        "e = 3\\; a\\\\b \xE2\x82\xAC\r\n");
    const Outcome run = folder.run({"VCAL", "--accept-empty-phone"});
    CHECK(run.out.find("Notiz Gr") != std::string::npos);
    CHECK(run.out.find("cut:") == std::string::npos);
}

TEST_CASE("A side of a later version is refused before anything is read") {
    RunFolder folder;
    folder.put("settings.toml", "damaged = = =\n");
    std::ostringstream out;
    std::ostringstream errors;
    const int exit = program::runProgram("halverntandolin",
                                         {"VCAL", "--phone", "obex+tty:/dev/x", "--settings",
                                          (folder.scratch.path / "settings.toml").string()},
                                         out, errors, {});
    CHECK(exit == 2);
    CHECK(errors.str() ==
          "obex+tty:/dev/x is not available in this version; nothing was read or written\n");
    CHECK(folder.tree("state").empty());
}
