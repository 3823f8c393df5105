#pragma once

// What every phone behind the port has to do, run against the fake and each real adapter.

#include "core/ports/phone_server.h"
#include "core/trap.h"
#include "support/printing.h"

#include <doctest/doctest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tandolin::testing {

/// An empty phone with room for so many objects in each directory.
using MakePhone = std::function<std::unique_ptr<PhoneServer>(int maximumRecords)>;

inline void store(PhoneServer& phone, TextView path, std::string bytes) {
    phone.PXDWrite(path, CreateStream(std::move(bytes), {}, {}, {}), 0);
}

inline std::string bytesAt(PhoneServer& phone, TextView path) {
    return CreateArray(phone.PXDRead(path));
}

/// The number of the failure that the body ends with, 0 without one.
template <class Body>
std::int32_t failureOf(Body&& body) {
    const auto failure = attempt(std::forward<Body>(body));
    return failure ? failure->Number : 0;
}

/// The value of a line in a status file.
inline std::string valueIn(const std::string& file, const std::string& key) {
    const std::size_t at = file.find(key + ':');
    if (at == std::string::npos) {
        return "(missing)";
    }
    const std::size_t from = at + key.size() + 1;
    return file.substr(from, file.find("\r\n", from) - from);
}

inline void checkReadingAndWriting(const MakePhone& make) {
    const auto phone = make(10);
    SUBCASE("an empty directory lists nothing and is no failure") {
        CHECK(phone->PXDList(u"\\telecom\\cal\\*.vcs", 0).empty());
    }
    SUBCASE("objects are listed by number, not by text") {
        for (const TextView name : {u"10", u"2", u"1"}) {
            store(*phone, u"\\telecom\\cal\\" + Text(name) + u".vcs", "x");
        }
        CHECK(phone->PXDList(u"\\telecom\\cal\\*.vcs", 0) ==
              std::vector<Text>{u"1.vcs", u"2.vcs", u"10.vcs"});
        CHECK(phone->PXDList(u"\\telecom\\pb\\*.vcf", 0).empty());
        CHECK(phone->PXDList(u"\\telecom\\cal\\*.vcf", 0).empty());
    }
    SUBCASE("bytes come back as they were, empty and binary ones too") {
        for (const std::string& bytes : {std::string(), std::string("\0\r\n\xff", 4)}) {
            store(*phone, u"\\telecom\\cal\\3.vcs", bytes);
            CHECK(bytesAt(*phone, u"\\telecom\\cal\\3.vcs") == bytes);
        }
    }
    SUBCASE("an absent file is told when the stream is turned to bytes") {
        PXDStream stream = phone->PXDRead(u"\\telecom\\cal\\4.vcs");
        CHECK(failureOf([&] { CreateArray(stream); }) == failure_number::kNotFound);
    }
    SUBCASE("status files are there") {
        CHECK(bytesAt(*phone, u"\\telecom\\devinfo.txt").find("\r\n") != std::string::npos);
        CHECK(valueIn(bytesAt(*phone, u"\\telecom\\pb\\info.log"), "MAXIMUM-RECORDS") == "10");
    }
}

inline void checkCounting(const MakePhone& make) {
    const auto phone = make(3);
    const auto info = [&](const std::string& key) {
        return valueIn(bytesAt(*phone, u"\\telecom\\cal\\info.log"), key);
    };
    const auto book = [&](const std::string& key) {
        return valueIn(bytesAt(*phone, u"\\telecom\\pb\\info.log"), key);
    };
    SUBCASE("counters follow every change") {
        store(*phone, u"\\telecom\\cal\\3.vcs", "x");
        store(*phone, u"\\telecom\\cal\\1.vcs", "x");
        CHECK(info("TOTAL-RECORDS") == "2");
        CHECK(info("LAST-USED-INDEX") == "1");
        phone->PXDDelete(u"\\telecom\\cal\\3.vcs");
        CHECK(info("TOTAL-RECORDS") == "1");
        CHECK(book("TOTAL-RECORDS") == "0");
    }
    SUBCASE("new.vcf takes the lowest free number and tells it") {
        store(*phone, u"\\telecom\\pb\\2.vcf", "two");
        store(*phone, u"\\telecom\\pb\\new.vcf", "a");
        CHECK(book("LAST-USED-INDEX") == "1");
        store(*phone, u"\\telecom\\pb\\NEW.vcf", "b");
        CHECK(book("LAST-USED-INDEX") == "3");
        CHECK(bytesAt(*phone, u"\\telecom\\pb\\2.vcf") == "two");
        phone->PXDDelete(u"\\telecom\\pb\\1.vcf");
        store(*phone, u"\\telecom\\pb\\new.vcf", "c");
        CHECK(bytesAt(*phone, u"\\telecom\\pb\\1.vcf") == "c");
    }
    SUBCASE("a full directory refuses a new object and takes an old one") {
        for (const TextView name : {u"5.vcf", u"6.vcf", u"7.vcf"}) {
            store(*phone, u"\\telecom\\pb\\" + Text(name), "x");
        }
        for (const TextView name : {u"8.vcf", u"new.vcf"}) {
            CHECK(failureOf([&] { store(*phone, u"\\telecom\\pb\\" + Text(name), "x"); }) ==
                  failure_number::kAccessDenied);
        }
        store(*phone, u"\\telecom\\pb\\6.vcf", "y");
        CHECK(book("TOTAL-RECORDS") == "3");
    }
    SUBCASE("a calendar has slots 1 to the maximum") {
        for (const TextView name : {u"0.vcs", u"4.vcs", u"65535.vcs", u"-1.vcs"}) {
            CHECK(failureOf([&] { store(*phone, u"\\telecom\\cal\\" + Text(name), "x"); }) ==
                  failure_number::kAccessDenied);
        }
        CHECK(info("TOTAL-RECORDS") == "0");
    }
}

inline void checkDeleting(const MakePhone& make) {
    const auto phone = make(3);
    const TextView path = u"\\telecom\\cal\\2.vcs";
    SUBCASE("removing an absent object succeeds") {
        phone->PXDDelete(path);
    }
    SUBCASE("what was removed can be put back until it is written again") {
        store(*phone, path, "old");
        phone->PXDDelete(path);
        phone->PXDDelete(path);
        CHECK(phone->restoreDeleted(path));
        CHECK(bytesAt(*phone, path) == "old");
        CHECK_FALSE(phone->restoreDeleted(path));
        phone->PXDDelete(path);
        store(*phone, path, "new");
        CHECK_FALSE(phone->restoreDeleted(path));
        CHECK(bytesAt(*phone, path) == "new");
    }
    SUBCASE("status files are not given up") {
        CHECK(failureOf([&] { phone->PXDDelete(u"\\telecom\\devinfo.txt"); }) ==
              failure_number::kAccessDenied);
    }
    phone->flush();
}

inline void checkNames(const MakePhone& make) {
    const auto phone = make(3);
    for (const TextView path : {u"\\telecom\\cal\\..\\1.vcs", u"\\telecom\\cal\\../../1.vcs",
                                u"\\telecom\\cal\\/1.vcs"}) {
        CAPTURE(toUtf8(path));
        CHECK(failureOf([&] { store(*phone, path, "x"); }) == failure_number::kAccessDenied);
        CHECK(failureOf([&] { phone->PXDRead(path); }) == failure_number::kAccessDenied);
        CHECK(failureOf([&] { phone->PXDDelete(path); }) == failure_number::kAccessDenied);
        CHECK(failureOf([&] { phone->PXDList(path, 0); }) == failure_number::kAccessDenied);
        CHECK_FALSE(phone->restoreDeleted(path));
    }
    for (const TextView name : {u"cal\\abc.vcs", u"cal\\1.vcf", u"cal\\new.vcs", u"pb\\1.vcs"}) {
        CAPTURE(toUtf8(name));
        CHECK(failureOf([&] { store(*phone, u"\\telecom\\" + Text(name), "x"); }) ==
              failure_number::kAccessDenied);
    }
}

inline void checkPhoneContract(const MakePhone& make) {
    SUBCASE("reading and writing") {
        checkReadingAndWriting(make);
    }
    SUBCASE("counting") {
        checkCounting(make);
    }
    SUBCASE("deleting") {
        checkDeleting(make);
    }
    SUBCASE("names") {
        checkNames(make);
    }
}

} // namespace tandolin::testing
