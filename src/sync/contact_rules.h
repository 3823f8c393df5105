#pragma once

#include "store/tables.h"

namespace tandolin {

// The rules by which a contact just read and a row of the main table are one. They look at the
// current rows of the two tables. Each side counts only as far as the phone could hold it.
//
// The three compares are strict, unlike those of the same names in formats/contact_compares.h: what
// is merged here overwrites one of the two.

/// Equal without regard to case.
bool CheckvCardString(TextView a, TextView b);

/// Equal without regard to case, also where exactly one of the two begins with "http://": the phone
/// drops the scheme.
bool CheckURL(TextView a, TextView b);

/// Equal as texts, or by their digits alone.
bool ComparePhoneNumbers(TextView a, TextView b);

/// The first rule, which goes before the field fill.
bool firstNamesAgree(const Table<Contact>& main, const Table<Contact>& candidate);

/// All rules in their order; the first that fails decides. That the last names are equal is the
/// search's to see.
bool sameContact(const Table<Contact>& main, const Table<Contact>& candidate);

/// In words, why the two are not one contact: the first rule that fails, empty when they are one.
TextView firstFailedRule(const Table<Contact>& main, const Table<Contact>& candidate);

/// What is empty on one of the two and not on the other is taken over, both ways; `TransferNew`
/// of the row that got something names its own side, and an organizer row's twins follow its
/// visible fields. A tick is never empty.
void fillEmptyFields(Table<Contact>& main, Table<Contact>& candidate);

} // namespace tandolin
