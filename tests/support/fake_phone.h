#pragma once

// A phone in memory: a map of path to bytes that counts and refuses as a real one, and a script of
// faults. It lives in the test; the program gets handles to it, so that releasing the server object
// does not lose the phone.

#include "core/failure.h"
#include "core/ports/phone_server.h"
#include "core/state.h"
#include "core/trap.h"
#include "support/faulty_calls.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tandolin::testing {

class FakePhone : public PhoneServer, public FaultyCalls {
public:
    /// The objects by path in lower case ("\telecom\cal\17.vcs"); a status file that stands here is
    /// told as it is, others are computed.
    std::map<Text, std::string> files;
    std::map<Text, int> maximumRecords{{Text(kCalendar), 500}, {Text(kPhoneBook), 500}};
    std::map<Text, int> lastUsed;

    static constexpr TextView kCalendar = u"\\telecom\\cal\\";
    static constexpr TextView kPhoneBook = u"\\telecom\\pb\\";

    static Text extensionOf(TextView directory) { return directory == kCalendar ? u"vcs" : u"vcf"; }

    FakePhone() : FaultyCalls(failure_number::kServerFailed) {
        files[u"\\telecom\\devinfo.txt"] = "MANU:FAKE\r\nMOD:F1\r\n";
    }

    void PXDDelete(TextView path) override {
        begin(u"PXDDelete", path);
        const Text key = keyOf(path);
        if (!isObject(key) && files.contains(key)) {
            refuse();
        }
        if (const auto file = files.find(key); file != files.end()) {
            deleted_[key] = file->second;
            files.erase(file);
        }
        answer();
    }

    std::vector<Text> PXDList(TextView pathWithPattern, int /*flags*/) override {
        begin(u"PXDList", pathWithPattern);
        const Text directory = directoryOf(keyOf(pathWithPattern));
        std::vector<Text> names;
        if (keyOf(pathWithPattern) == directory + u"*." + extensionOf(directory)) {
            for (const int number : numbersIn(directory)) {
                names.push_back(decimal(number) + u'.' + extensionOf(directory));
            }
        }
        return names;
    }

    PXDStream PXDRead(TextView path) override {
        begin(u"PXDRead", path);
        const Text key = keyOf(path);
        const auto file = files.find(key);
        if (file != files.end()) {
            return CreateStream(file->second, {}, {}, {});
        }
        const Text directory = directoryOf(key);
        if (maximumRecords.contains(directory) && key == directory + u"info.log") {
            return CreateStream(infoLog(directory), {}, {}, {});
        }
        PXDStream absent;
        absent.found = false;
        return absent;
    }

    void PXDWrite(TextView path, const PXDStream& stream, int /*flags*/) override {
        begin(u"PXDWrite", path);
        Text key = keyOf(path);
        const Text directory = directoryOf(key);
        const std::set<int> numbers = numbersIn(directory);
        if (key == Text(kPhoneBook) + u"new.vcf") {
            int free = 1;
            while (numbers.contains(free)) {
                ++free;
            }
            key = directory + decimal(free) + u".vcf";
        }
        if (!isObject(key)) {
            refuse();
        }
        const int number = numberOf(key);
        const int maximum = maximumRecords.at(directory);
        const bool full = !numbers.contains(number) && std::ssize(numbers) >= maximum;
        if (full || (directory == kCalendar && (number < 1 || number > maximum))) {
            refuse();
        }
        files[key] = stream.bytes;
        lastUsed[directory] = number;
        deleted_.erase(key);
        answer();
    }

    bool restoreDeleted(TextView path) override {
        const Text key = keyOf(path);
        if (attempt([&] { begin(u"restoreDeleted", path); }) || !deleted_.contains(key) ||
            files.contains(key)) {
            return false;
        }
        files[key] = deleted_[key];
        deleted_.erase(key);
        return true;
    }

    void flush() override { begin(u"flush", {}); }

    /// The program's server object leads here from now on. What an earlier run deleted is
    /// forgotten.
    void connect() {
        deleted_.clear();
        app.ports.makePhoneServer = [this] { return std::make_unique<Handle>(*this); };
        MobilePaths& paths = app.phone.GlobalMobilePaths;
        paths.rootDirectory = u"\\telecom\\";
        paths.deviceInfoFile = u"devinfo.txt";
        paths.calendarDirectory = kCalendar;
        paths.calendarInfoFile = u"info.log";
        paths.phoneBookDirectory = kPhoneBook;
        paths.phoneBookInfoFile = u"info.log";
    }

    /// How often an operation was called.
    [[nodiscard]] std::ptrdiff_t callsOf(TextView operation) const {
        return std::ranges::count_if(
            calls, [&](const Text& call) { return call.starts_with(Text(operation) + u' '); });
    }

private:
    class Handle : public PhoneServer {
    public:
        explicit Handle(FakePhone& phone) : phone_(phone) {}

        void PXDDelete(TextView path) override { phone_.PXDDelete(path); }

        std::vector<Text> PXDList(TextView path, int flags) override {
            return phone_.PXDList(path, flags);
        }

        PXDStream PXDRead(TextView path) override { return phone_.PXDRead(path); }

        void PXDWrite(TextView path, const PXDStream& stream, int flags) override {
            phone_.PXDWrite(path, stream, flags);
        }

        bool restoreDeleted(TextView path) override { return phone_.restoreDeleted(path); }

        void flush() override { phone_.flush(); }

    private:
        FakePhone& phone_;
    };

    void begin(TextView operation, TextView path) {
        note(Text(operation) + u' ' + Text(path));
        if (path.find(u'/') != TextView::npos || path.find(u"..") != TextView::npos) {
            refuse();
        }
    }

    [[noreturn]] static void refuse() {
        throw Failure(failure_number::kAccessDenied, u"the fake phone refuses");
    }

    static Text keyOf(TextView path) {
        Text key(path);
        std::ranges::transform(key, key.begin(), [](char16_t c) {
            return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
        });
        return key;
    }

    static Text directoryOf(const Text& key) { return key.substr(0, key.rfind(u'\\') + 1); }

    static bool isObject(const Text& key) {
        const Text directory = directoryOf(key);
        return (directory == kCalendar || directory == kPhoneBook) && numberOf(key) >= 0 &&
               key == directory + decimal(numberOf(key)) + u'.' + extensionOf(directory);
    }

    static int numberOf(const Text& key) {
        const Text name = key.substr(directoryOf(key).size());
        return static_cast<int>(
            wholeNumber(TextView(name).substr(0, name.find(u'.'))).value_or(-1));
    }

    [[nodiscard]] std::set<int> numbersIn(const Text& directory) const {
        std::set<int> numbers;
        for (const auto& [key, bytes] : files) {
            if (directoryOf(key) == directory && isObject(key)) {
                numbers.insert(numberOf(key));
            }
        }
        return numbers;
    }

    [[nodiscard]] std::string infoLog(const Text& directory) const {
        const std::set<int> numbers = numbersIn(directory);
        const auto last = lastUsed.find(directory);
        const int index =
            last != lastUsed.end() ? last->second : (numbers.empty() ? 0 : *numbers.rbegin());
        return "MAXIMUM-RECORDS:" + std::to_string(maximumRecords.at(directory)) +
               "\r\nTOTAL-RECORDS:" + std::to_string(numbers.size()) +
               "\r\nLAST-USED-INDEX:" + std::to_string(index) + "\r\n";
    }

    std::map<Text, std::string> deleted_;
};

} // namespace tandolin::testing
