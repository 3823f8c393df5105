#pragma once

#include "core/ports/phone_server.h"
#include "core/ports/store_changes.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace tandolin::platform {

/// Objects by name as a run has read them, so that the copy need not read a slow phone twice.
using ObjectBytes = std::unordered_map<std::string, std::string>;

/// The files of any phone, over its server: objects "telecom/cal/17.vcs" and "telecom/pb/4.vcf".
/// The status files are copied, but a phone counts by itself: they are never written.
class PhoneFiles : public StoreFiles {
public:
    /// The server must outlive the object. `known` may be null.
    explicit PhoneFiles(PhoneServer& server, std::shared_ptr<const ObjectBytes> known = nullptr)
        : server_(server), known_(std::move(known)) {}

    std::vector<std::string> entries(EntryKinds kinds) override;
    std::optional<std::string> read(const std::string& name) override;
    void write(const std::string& name, std::string_view bytes) override;
    void remove(const std::string& name) override;

    void flush() override { server_.flush(); }

    std::vector<std::string> statusFiles() override;

private:
    PhoneServer& server_;
    std::shared_ptr<const ObjectBytes> known_;
};

} // namespace tandolin::platform
