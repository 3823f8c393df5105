#include "platform/organizer_folder/card_name.h"

#include <array>
#include <initializer_list>

namespace tandolin::vcard {

namespace {

std::string joined(std::initializer_list<std::string_view> parts, std::string_view between = " ") {
    std::string all;
    for (const std::string_view part : parts) {
        if (!part.empty()) {
            all.append(all.empty() ? "" : between).append(part);
        }
    }
    return all;
}

/// The ways in which programs build a whole name.
using Form = std::string (*)(const NameParts&);

constexpr std::array<Form, 7> kForms{
    [](const NameParts& n) {
        return joined({n.first, n.last});
    },
    [](const NameParts& n) {
        return joined({n.first, n.middle, n.last});
    },
    [](const NameParts& n) {
        return joined({n.prefix, n.first, n.middle, n.last, n.suffix});
    },
    [](const NameParts& n) {
        return joined({joined({n.prefix, n.first, n.middle, n.last}), n.suffix}, ", ");
    },
    [](const NameParts& n) {
        return joined({n.last, n.first}, ", ");
    },
    [](const NameParts& n) {
        return joined({n.last, joined({n.first, n.middle})}, ", ");
    },
    [](const NameParts& n) {
        return joined({n.last, n.first});
    }};

/// Without the differences between one blank and several.
std::string withSingleBlanks(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const bool blank = c == ' ' || c == '\t' || c == '\n';
        if (!blank) {
            result += c;
        } else if (!result.empty() && result.back() != ' ') {
            result += ' ';
        }
    }
    if (result.ends_with(' ')) {
        result.pop_back();
    }
    return result;
}

bool isNameless(const NameParts& n) {
    return n.first.empty() && n.last.empty();
}

} // namespace

std::string fullName(std::string_view first, std::string_view last) {
    return joined({first, last});
}

std::optional<std::string> renamed(std::string_view whole, const NameParts& before,
                                   const NameParts& after) {
    const std::string old = withSingleBlanks(whole);
    Form form = nullptr;
    if (isNameless(before)) {
        const bool built = old.empty() || old == withSingleBlanks(before.substitute);
        form = built ? kForms.front() : nullptr;
    }
    for (const Form one : kForms) {
        if (form == nullptr && !isNameless(before) && withSingleBlanks(one(before)) == old) {
            form = one;
        }
    }
    if (form == nullptr) {
        return std::nullopt;
    }
    const std::string name = isNameless(after) ? after.substitute : form(after);
    return name.empty() || name == whole ? std::nullopt : std::optional(name);
}

} // namespace tandolin::vcard
