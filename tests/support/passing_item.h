#pragma once

#include "core/ports/organizer.h"

#include <memory>

namespace tandolin::testing {

/// An item that passes everything on to another one: the base of those that let something go wrong.
class PassingItem : public AppointmentItem {
public:
    explicit PassingItem(std::unique_ptr<AppointmentItem> item) : item_(std::move(item)) {}

    [[nodiscard]] AppointmentFacts facts() const override { return item_->facts(); }

    void setSubject(TextView subject) override { item_->setSubject(subject); }

    void setStart(Date start) override { item_->setStart(start); }

    void setEnd(Date end) override { item_->setEnd(end); }

    void setMeetingStatus(int status) override { item_->setMeetingStatus(status); }

    void setReminderSet(bool on) override { item_->setReminderSet(on); }

    void setRecurrencePattern(const RecurrencePattern& pattern) override {
        item_->setRecurrencePattern(pattern);
    }

    void ClearRecurrencePattern() override { item_->ClearRecurrencePattern(); }

    void Save() override { item_->Save(); }

    void Delete() override { item_->Delete(); }

protected:
    std::unique_ptr<AppointmentItem> item_;
};

} // namespace tandolin::testing
