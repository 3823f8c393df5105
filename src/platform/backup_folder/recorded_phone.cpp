#include "platform/backup_folder/recorded_phone.h"

#include "core/failure.h"
#include "core/phone_names.h"

namespace tandolin::platform {

namespace {

constexpr std::string_view kNewCard = "/new.vcf";
constexpr TextView kLastUsed = u"LAST-USED-INDEX:";

[[noreturn]] void failUntold() {
    throw Failure(failure_number::kServerFailed,
                  u"the phone does not tell the number of a new card");
}

/// The name that the phone chose for a new card, as its status file tells.
std::string chosenName(PhoneServer& phone, std::string_view wish) {
    const std::string folder(wish.substr(0, wish.size() - kNewCard.size() + 1));
    const Text status =
        upper(fromUtf8(CreateArray(phone.PXDRead(phonePathOf(folder + "info.log")))));
    const std::size_t at = status.find(kLastUsed);
    const Text value = at == Text::npos
                           ? Text()
                           : status.substr(at + kLastUsed.size(),
                                           status.find(u"\r\n", at) - at - kLastUsed.size());
    const auto number = wholeNumber(trimmed(value));
    if (!number) {
        failUntold();
    }
    return folder + std::to_string(*number) + ".vcf";
}

} // namespace

RecordedPhone::RecordedPhone(std::unique_ptr<PhoneServer> phone, ChangeObserver& observer,
                             PhoneLink link)
    : phone_(std::move(phone)), observer_(observer), link_(std::move(link)) {}

void RecordedPhone::PXDDelete(TextView path) {
    const std::string name = nameOfPhonePath(path);
    observed(&observer_, StoreSide::phone, name, std::nullopt, [&] { phone_->PXDDelete(path); });
    forget(name);
}

PXDStream RecordedPhone::PXDRead(TextView path) {
    PXDStream stream = phone_->PXDRead(path);
    if (link_.readBytes && stream.found) {
        const std::string name = nameOfPhonePath(path);
        if (name.ends_with(".vcs") || name.ends_with(".vcf")) {
            link_.readBytes->insert_or_assign(name, stream.bytes);
        }
    }
    return stream;
}

void RecordedPhone::PXDWrite(TextView path, const PXDStream& stream, int flags) {
    const std::string name = nameOfPhonePath(path);
    observed(&observer_, StoreSide::phone, name, stream.bytes,
             [&] { phone_->PXDWrite(path, stream, flags); });
    forget(name);
    noteWhatBecame(name, stream);
}

void RecordedPhone::noteWhatBecame(const std::string& name, const PXDStream& stream) {
    const bool isWish = sameText(fromUtf8(name.substr(name.rfind('/') + 1)), u"new.vcf");
    if (!isWish && !link_.mayRewrite) {
        return;
    }
    const std::string newName = isWish ? chosenName(*phone_, name) : name;
    const std::string stored = CreateArray(phone_->PXDRead(phonePathOf(newName)));
    if (!link_.mayRewrite && stored != stream.bytes) {
        // An old answer: what was written before would be taken for the new card.
        failUntold();
    }
    observer_.changeBecame(StoreSide::phone, name, newName, stored);
}

bool RecordedPhone::restoreDeleted(TextView path) {
    const bool restored = phone_->restoreDeleted(path);
    if (restored) {
        observer_.changeUncertain(StoreSide::phone, nameOfPhonePath(path));
    }
    return restored;
}

void RecordedPhone::forget(const std::string& name) {
    if (link_.readBytes) {
        link_.readBytes->erase(name);
    }
}

} // namespace tandolin::platform
