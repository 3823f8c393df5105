#include "platform/settings_toml/toml_file.h"

#include "platform/settings_toml/toml_text.h"
#include "platform/system_posix/atomic_file.h"

#include <system_error>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

/// Settings are small; a larger file is something else.
constexpr std::size_t kLargest = std::size_t{8} * 1024 * 1024;
constexpr unsigned kPrivate = 0600;

/// A settings file kept elsewhere and linked to stays a link.
fs::path behindLinks(const fs::path& path) {
    std::error_code error;
    const bool link = fs::is_symlink(fs::symlink_status(path, error));
    const fs::path target = link ? fs::weakly_canonical(path, error) : path;
    return error || target.empty() ? path : target;
}

/// The table at the end of the path, null when a step is missing or no table.
template <class Table>
Table* tableAt(Table& root, const TablePath& path) {
    Table* at = &root;
    for (const std::string& key : path) {
        at = at == nullptr ? nullptr : at->template get_as<toml::table>(key);
    }
    return at;
}

Failure damaged(const fs::path& path, Text why, int line) {
    Failure failure(failure_number::kFileFailed, {}, u"TomlSettings");
    failure.File = fromUtf8(path.native());
    failure.Line = line;
    failure.Description = u"The settings file " + failure.File;
    failure.Description += line > 0 ? u", line " + decimal(line) : Text{};
    failure.Description += u", cannot be used: " + why;
    failure.Description += u". Correct it, or move it away to start with new settings.";
    return failure;
}

} // namespace

TomlFile::TomlFile(fs::path path, bool writable) : path_(behindLinks(path)), writable_(writable) {}

void TomlFile::load(bool keepCopy) {
    root_.clear();
    bytes_.clear();
    changed_ = false;
    isNew_ = true;
    try {
        bytes_ = readWholeFile(path_, kLargest);
        isNew_ = false;
        root_ = toml::parse(bytes_, path_.native());
    } catch (const Failure& failure) {
        if (failure.Number == failure_number::kNotFound) {
            return;
        }
        isNew_ = writable_ = false;
        throw damaged(path_, failure.Description, 0);
    } catch (const toml::parse_error& error) {
        if (keepCopy && writable_) {
            keepAside(bytes_);
        }
        writable_ = false;
        throw damaged(path_, fromUtf8(error.description()),
                      static_cast<int>(error.source().begin.line));
    }
}

void TomlFile::keepAside(std::string_view bytes) const {
    const fs::path copy = path_.native() + ".damaged";
    try {
        if (readWholeFile(copy, kLargest) == bytes) {
            return;
        }
    } catch (const Failure&) {
        // There is no copy yet, or none that can be read.
    }
    try {
        replaceFile(copy, bytes, kPrivate, Flush::now);
    } catch (const Failure&) {
        // The copy is a convenience. That the file is damaged is told in either case, and the file
        // itself is never written over.
    }
}

bool TomlFile::hasTable(const TablePath& path) const {
    return tableAt(root_, path) != nullptr;
}

bool TomlFile::makeTable(const TablePath& path) {
    toml::table* at = &root_;
    bool made = false;
    for (const std::string& key : path) {
        if (!at->contains(key)) {
            at->insert(key, toml::table{});
            made = true;
        }
        at = at->get_as<toml::table>(key);
        if (at == nullptr) {
            throw damaged(path_, u"\"" + fromUtf8(key) + u"\" is a value and no table", 0);
        }
    }
    changed_ = changed_ || made;
    return made;
}

std::optional<SettingValue> TomlFile::value(const TablePath& path, std::string_view key) const {
    const toml::table* at = tableAt(root_, path);
    const toml::node* node = at == nullptr ? nullptr : at->get(key);
    if (node == nullptr || node->is_table()) {
        return std::nullopt;
    }
    if (const auto* number = node->as_integer()) {
        return number->get();
    }
    const auto* text = node->as_string();
    return fromUtf8(text != nullptr ? text->get() : spelled(*node));
}

bool TomlFile::setValue(const TablePath& path, std::string_view key, const SettingValue& value) {
    toml::table* at = tableAt(root_, path);
    if (at == nullptr) {
        return false;
    }
    if (this->value(path, key) == value) {
        return true;
    }
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        at->insert_or_assign(key, *number);
    } else {
        at->insert_or_assign(key, toUtf8(std::get<Text>(value)));
    }
    changed_ = true;
    return true;
}

void TomlFile::save() {
    if (!changed_ || !writable_) {
        return;
    }
    std::string text = editedText(bytes_, root_);
    makePrivateDirectories(path_.parent_path());
    replaceFile(path_, text, kPrivate, Flush::now);
    bytes_ = std::move(text);
    changed_ = false;
}

} // namespace tandolin::platform
