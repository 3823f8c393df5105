#include "core/language_strings.h"

#include "core/state.h"
#include "core/trap.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"SprachenStrings";

} // namespace

const std::array<GermanText, kStringCount> kGermanTexts{{
// clang-format off
#include "core/german_texts.inc"
    // clang-format on
}};

void LanguageStrings::loadGerman() {
    for (const GermanText& row : kGermanTexts) {
        set(row.id, Text(row.text));
    }
}

const Text& tr(StringId id) {
    return app.strings[id];
}

void setStartLanguage() {
    trapped({kModule, u"setStartLanguage"}, [] {
        Text& code = app.settings.Sprache;
        if (code.size() < 2) {
            constexpr TextView kDigits = u"0123456789ABCDEF";
            code.clear();
            for (unsigned number = app.ports.locale->number(); number > 0; number /= 16) {
                code.insert(code.begin(), kDigits[number % 16]);
            }
            if (code.size() < 4) {
                code.insert(code.begin(), u'0');
            }
        }
        setLanguageFile();
        LoadLanguageStrings();
    });
}

void setLanguageFile() {
    app.core.GlobalLanguageFile =
        app.settings.HomeDir + u"\\Lng\\TDLRES" + app.settings.Sprache + u".dll";
}

void LoadLanguageStrings() {
    const int handle = LoadLibraryC(app.core.GlobalLanguageFile, 0);
    if (handle != 0) {
        set_str_variable_Res(handle);
    } else {
        app.strings.loadGerman();
    }
    app.ports.languages->free(handle);
}

int LoadLibraryC(TextView path, int /*dataFileFlag*/) {
    constexpr int kAbsent = 2;
    const int opened = trapped({kModule, u"LoadLibraryC"}, 0, [path](int& handle) {
        handle = app.ports.languages->open(path);
        if (handle == 0) {
            // The path stands first, the words behind it.
            throw Failure(app.ports.languages->lastError(),
                          Text(path) + tr(ids::kCannotLoadLibrary), u"LoadLibraryC");
        }
    });
    if (opened == 0 && app.ports.languages->lastError() == kAbsent) {
        // A language nobody has translated yet is told, but is no failure of what the run does.
        --app.run.failures;
    }
    return opened;
}

Text LoadStringC(int handle, int id) {
    Text text = app.ports.languages->string(handle, id);
    if (const auto end = text.find(u'\0'); end != Text::npos) {
        text.resize(end);
    }
    if (text.empty()) {
        // A missing id is a failure and not an empty text. The library's answer, 0 characters,
        // would read as "no failure", so the number is that of a missing item.
        throw Failure(failure_number::kNoItem, u"String " + decimal(id) + u" is missing",
                      u"LoadStringC");
    }
    return text;
}

void set_str_variable_Res(int handle) {
    trapped({kModule, u"set_str_variable_Res"}, [handle] {
        for (const GermanText& row : kGermanTexts) {
            app.strings.set(row.id, LoadStringC(handle, row.id));
        }
    });
}

} // namespace tandolin
