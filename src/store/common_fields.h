#pragma once

#include "store/calendar_layout.h"
#include "store/contact_layout.h"

namespace tandolin {

/// The fields that both layouts have, under one name each, for code that is the same for calendar
/// entries and contacts.
template <class L>
struct Common;

template <>
struct Common<Calendar> {
    static constexpr auto PIM = cal::PIM;
    static constexpr auto Mobile = cal::Mobile;
    static constexpr auto EntryType = cal::EntryType;
    static constexpr auto EntryID = cal::EntryID;
    static constexpr auto UID = cal::UID;
    static constexpr auto IsChanged = cal::IsChanged;
    static constexpr auto PIMNew = cal::PIMNew;
    static constexpr auto TransferMode = cal::TransferMode;
    static constexpr auto TransferNew = cal::TransferNew;
};

template <>
struct Common<Contact> {
    static constexpr auto PIM = con::PIM;
    static constexpr auto Mobile = con::Mobile;
    static constexpr auto EntryType = con::EntryType;
    static constexpr auto EntryID = con::EntryID;
    static constexpr auto UID = con::UID;
    static constexpr auto IsChanged = con::IsChanged;
    static constexpr auto PIMNew = con::PIMNew;
    static constexpr auto TransferMode = con::TransferMode;
    static constexpr auto TransferNew = con::TransferNew;
};

} // namespace tandolin
