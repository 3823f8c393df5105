#pragma once

// What a run did to its two sides, noted as it happens: a line before each change, so that a run
// that is killed can be undone too. Fields are set apart by tabs:
//
//     C  phone  3f0a...  91bc...  telecom/cal/17.vcs     held the first content, is to hold the
//     second C  phone  3f0a...  -        telecom/cal/18.vcs     is to be removed U  phone
//     telecom/cal/17.vcs                       failed or taken back: either content B  phone
//     telecom/pb/new.vcf  77e1...  telecom/pb/4.vcf    the store chose name and content

#include "core/ports/store_changes.h"
#include "platform/backup_folder/content_hash.h"
#include "platform/system_posix/descriptor.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tandolin::platform {

/// All that a run did to one entry.
struct Change {
    StoreSide side = StoreSide::phone;
    std::string name;
    Content before;
    /// The contents that the run may have left, the likeliest last. One unless it was interrupted
    /// or a change failed.
    std::vector<Content> left;

    /// The run has changed it beyond doubt.
    [[nodiscard]] bool isCertain() const { return left.size() == 1 && left.front() != before; }
};

/// Is it the name under which a new card is handed to the phone, which chooses another one?
bool isWishForName(std::string_view name);

class Journal {
public:
    /// Starts a new file; throws when it cannot.
    explicit Journal(std::filesystem::path path);

    // One line each; throws when it cannot be written.
    void change(StoreSide side, const std::string& name, const Content& before,
                const Content& after);
    void uncertain(StoreSide side, const std::string& name);
    void became(StoreSide side, const std::string& name, const std::string& newName,
                const std::string& content);
    /// What was noted is on disk afterwards.
    void flush();

private:
    void add(const std::string& line);

    std::filesystem::path path_;
    Descriptor file_;
};

/// The changes of a journal, in the order of their first line. A run that did not finish may have
/// ended before its last change was made, and in the middle of a line. Throws Failure 57 for lines
/// that no journal has.
std::vector<Change> changesOf(std::string_view journal, bool finished);

} // namespace tandolin::platform
