// Writes the built-in German set as a gettext template and as the German catalogue.
// Usage: write_german_catalogue TEMPLATE.pot GERMAN.po

#include "core/language_strings.h"

#include <fstream>
#include <iostream>
#include <string>

namespace {

constexpr const char* kHeader = "msgid \"\"\n"
                                "msgstr \"\"\n"
                                "\"Project-Id-Version: HalvernTandolin\\n\"\n"
                                "\"Language: de\\n\"\n"
                                "\"MIME-Version: 1.0\\n\"\n"
                                "\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
                                "\"Content-Transfer-Encoding: 8bit\\n\"\n";

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            result += '\\';
        }
        result += c;
    }
    return result + '"';
}

enum class Translated { no, yes };

bool writeCatalogue(const char* path, Translated translated) {
    std::ofstream file(path, std::ios::binary);
    file << kHeader;
    for (const tandolin::GermanText& row : tandolin::kGermanTexts) {
        const std::string text = quoted(tandolin::toUtf8(row.text));
        // The number is the context: it is what the program asks for, and two texts may be alike.
        file << "\nmsgctxt \"" << row.id << "\"\nmsgid " << text << "\nmsgstr "
             << (translated == Translated::yes ? text : "\"\"") << '\n';
    }
    file.close();
    if (!file) {
        std::cerr << path << ": cannot be written\n";
    }
    return static_cast<bool>(file);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: write_german_catalogue TEMPLATE.pot GERMAN.po\n";
        return 2;
    }
    const bool written =
        writeCatalogue(argv[1], Translated::no) && writeCatalogue(argv[2], Translated::yes);
    return written ? 0 : 1;
}
