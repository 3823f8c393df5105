#pragma once

// What every test of the logic starts from: fresh state and small fakes behind the ports that show
// things. Phone and organizer are given by the test.

#include "core/state.h"
#include "store/tables.h"
#include "support/fixed_clock.h"

#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tandolin::testing {

struct ScriptedScreen : MessageBoxes, StatusView, MainWindow {
    std::vector<Text> boxesShown;
    std::deque<Answer> answers; ///< taken in order; without one the answer is the harmless one
    std::vector<Text> statusTexts;
    std::map<Text, bool> tools;      ///< "band/tool" to enabled
    std::map<Text, bool> shownTools; ///< "band/tool" to visible
    std::vector<Form> modalForms;
    bool cancelNow = false;
    int cancelAfterTexts = -1; ///< Cancel is pressed once so many status texts were shown
    bool statusOpen = false;

    Answer ask(TextView, TextView text, Icon, Buttons buttons) override {
        boxesShown.emplace_back(text);
        if (!answers.empty()) {
            const Answer answer = answers.front();
            answers.pop_front();
            return answer;
        }
        return buttons == Buttons::ok ? Answer::ok
                                      : (buttons == Buttons::yesNo ? Answer::no : Answer::cancel);
    }

    void open(TextView) override { statusOpen = true; }

    void text(TextView text) override { statusTexts.emplace_back(text); }

    void buttons(bool, bool) override {}

    bool cancelPressed() override {
        if (cancelAfterTexts >= 0 && std::cmp_greater_equal(statusTexts.size(), cancelAfterTexts)) {
            cancelAfterTexts = -1;
            return true;
        }
        return std::exchange(cancelNow, false);
    }

    void close() override { statusOpen = false; }

    void toolEnabled(TextView band, TextView tool, bool enabled) override {
        tools[Text(band) + u'/' + Text(tool)] = enabled;
    }

    void toolVisible(TextView band, TextView tool, bool visible) override {
        shownTools[Text(band) + u'/' + Text(tool)] = visible;
    }

    void pane(Pane, TextView) override {}

    void columnCaptions(Grid) override {}

    void refresh(Grid) override {}

    void busy(bool) override {}

    void EntryBackround(double, double) override {}

    void startTimer(int) override {}

    void show(Form) override {}

    void unload(Form) override {}

    void runModal(Form form) override { modalForms.push_back(form); }

    void TDLInitForm(bool) override {}

    void focusMain() override {}
};

struct GermanLocale : UserLocale {
    [[nodiscard]] std::optional<Text> info(LocaleItem item) const override {
        switch (item) {
        case LocaleItem::dateSeparator:
            return u".";
        case LocaleItem::shortDate:
            return u"dd.MM.yyyy";
        case LocaleItem::timeFormat:
            return u"HH:mm:ss";
        case LocaleItem::timeSeparator:
            return u":";
        case LocaleItem::twentyFourHours:
            return u"1";
        default:
            return u"";
        }
    }

    [[nodiscard]] std::uint16_t number() const override { return 0x0407; }
};

/// A settings store in memory.
struct MemorySettings : SettingsStore {
    std::map<std::pair<SettingsRoot, Text>, std::map<Text, SettingValue>> keys;
    Text failingName; ///< a write of this name throws

    bool exists(SettingsRoot root, TextView key) override {
        return keys.contains({root, Text(key)});
    }

    bool create(SettingsRoot root, TextView key) override {
        return keys.try_emplace({root, Text(key)}).second;
    }

    std::optional<SettingValue> read(SettingsRoot root, TextView key, TextView name) override {
        const auto values = keys.find({root, Text(key)});
        if (values == keys.end() || !values->second.contains(Text(name))) {
            return std::nullopt;
        }
        return values->second.at(Text(name));
    }

    bool write(SettingsRoot root, TextView key, TextView name, const SettingValue& value) override {
        if (name == failingName && !failingName.empty()) {
            throw Failure(failure_number::kFileFailed, u"write failed");
        }
        const auto values = keys.find({root, Text(key)});
        if (values == keys.end()) {
            return false;
        }
        values->second[Text(name)] = value;
        return true;
    }

    void save() override {}
};

/// Every test owns one.
struct FreshProgram {
    ScriptedScreen screen;
    FixedClock clock;
    GermanLocale locale;
    MemorySettings settings;

    FreshProgram() {
        start();
        app.ports.screen = {&screen, &screen, &screen};
        app.ports.clock = &clock;
        app.ports.locale = &locale;
        app.ports.settings = &settings;
        app.core.GlobalToday = wholeDay(clock.moment);
        app.core.GlobalSilentMode = kTrue;
        app.formats.shortDate = u"dd.mm.yyyy";
    }

    FreshProgram(const FreshProgram&) = delete;
    FreshProgram& operator=(const FreshProgram&) = delete;

    ~FreshProgram() { start(); }

private:
    static void start() {
        app = {};
        tables.clearAll();
    }
};

} // namespace tandolin::testing
