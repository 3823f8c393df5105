#include "platform/phone_directory/store_names.h"

#include "core/failure.h"
#include "platform/system_posix/atomic_file.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

// More digits than any phone counts to, and few enough to fit an int.
constexpr std::size_t kMostDigits = 9;

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isPlainName(TextView name) {
    return !name.empty() && name != u"." && name != u".." &&
           name.find_first_of(TextView(u"/\\\0", 3)) == TextView::npos;
}

[[noreturn]] void refusePath(TextView path) {
    // A NUL would cut the message where it is shown.
    Text shown(path.substr(0, 200));
    std::ranges::replace(shown, u'\0', u'?');
    throw Failure(failure_number::kAccessDenied, u"The name leads out of the store: " + shown);
}

/// Takes the part up to the next backslash off the path.
TextView takePart(TextView& path) {
    const std::size_t end = std::min(path.find(u'\\'), path.size());
    const TextView part = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    return part;
}

bool liesBelow(const fs::path& path, const fs::path& root) {
    const auto [rootEnd, ignored] = std::ranges::mismatch(root, path);
    return rootEnd == root.end();
}

} // namespace

StorePath storePathOf(TextView path) {
    TextView rest = path;
    if (!rest.starts_with(u'\\') || (takePart(rest), !sameText(takePart(rest), u"telecom"))) {
        refusePath(path);
    }
    StorePlace place = StorePlace::root;
    if (rest.find(u'\\') != TextView::npos) {
        const TextView folder = takePart(rest);
        if (!sameText(folder, u"cal") && !sameText(folder, u"pb")) {
            refusePath(path);
        }
        place = sameText(folder, u"cal") ? StorePlace::calendar : StorePlace::phoneBook;
    }
    if (!isPlainName(rest)) {
        refusePath(path);
    }
    return {place, toUtf8(rest)};
}

std::optional<int> objectNumber(std::string_view fileName, std::string_view extension) {
    const std::size_t point = fileName.find('.');
    if (point == std::string_view::npos || point == 0 || point > kMostDigits ||
        !sameName(fileName.substr(point + 1), extension)) {
        return std::nullopt;
    }
    const std::string_view digits = fileName.substr(0, point);
    const bool leadingZero = digits.size() > 1 && digits.front() == '0';
    if (leadingZero || !std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; })) {
        return std::nullopt;
    }
    int number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

bool matchesPattern(TextView name, TextView pattern) {
    // Where the last "*" stands, and the name's place that it has swallowed up to so far.
    std::size_t n = 0;
    std::size_t p = 0;
    std::size_t star = TextView::npos;
    std::size_t swallowed = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            star = p++;
            swallowed = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == u'?' || sameText(pattern.substr(p, 1), name.substr(n, 1)))) {
            ++p;
            ++n;
        } else if (star != TextView::npos) {
            p = star + 1;
            n = ++swallowed;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(u'*', p) == TextView::npos;
}

bool sameName(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, lower, lower);
}

Found look(const fs::path& path, const fs::path& root) {
    std::error_code error;
    fs::file_status status = fs::symlink_status(path, error);
    if (status.type() == fs::file_type::not_found) {
        return Found::nothing;
    }
    if (status.type() == fs::file_type::none) {
        throw failureOfErrno(error.value(), path, u"cannot read");
    }
    if (status.type() == fs::file_type::symlink) {
        const fs::path target = fs::canonical(path, error);
        if (error || !liesBelow(target, fs::canonical(root, error)) || error) {
            return Found::foreign;
        }
        status = fs::status(target, error);
    }
    switch (status.type()) {
    case fs::file_type::regular:
        return Found::file;
    case fs::file_type::directory:
        return Found::directory;
    default:
        return Found::foreign;
    }
}

} // namespace tandolin::platform
