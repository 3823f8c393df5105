#pragma once

#include "core/ports/phone_server.h"
#include "core/ports/store_changes.h"
#include "platform/backup_folder/phone_files.h"

#include <memory>

namespace tandolin::platform {

/// What a phone at the end of a link needs that a directory does not.
struct PhoneLink {
    /// Objects that were read are kept here for the copy; null where reading again is cheap.
    std::shared_ptr<ObjectBytes> readBytes;
    /// The phone may keep another form of an object than it was sent; it is read back.
    bool mayRewrite = false;
};

/// A phone server around another one that tells an observer of every change before it is made.
class RecordedPhone final : public PhoneServer {
public:
    /// The observer must outlive the object.
    RecordedPhone(std::unique_ptr<PhoneServer> phone, ChangeObserver& observer,
                  PhoneLink link = {});

    void PXDDelete(TextView path) override;

    std::vector<Text> PXDList(TextView pathWithPattern, int flags) override {
        return phone_->PXDList(pathWithPattern, flags);
    }

    PXDStream PXDRead(TextView path) override;
    void PXDWrite(TextView path, const PXDStream& stream, int flags) override;
    bool restoreDeleted(TextView path) override;

    void flush() override { phone_->flush(); }

private:
    void forget(const std::string& name);
    void noteWhatBecame(const std::string& name, const PXDStream& stream);

    std::unique_ptr<PhoneServer> phone_;
    ChangeObserver& observer_;
    PhoneLink link_;
};

} // namespace tandolin::platform
