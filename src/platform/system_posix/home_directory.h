#pragma once

#include "core/ports/system.h"
#include "platform/system_posix/descriptor.h"

#include <filesystem>

namespace tandolin::platform {

/// Log and trace in the home directory of the program. They hold titles and names, so they are
/// readable by their owner only. A missing directory is made.
class HomeDirectory : public HomeFiles {
public:
    void ensureWritable(TextView directory) override;
    void write(TextView path, TextView text) override;
    void openTrace(TextView path) override;
    void append(TextView text) override;
    void closeTrace() override;

private:
    std::filesystem::path tracePath_;
    Descriptor trace_;
};

} // namespace tandolin::platform
