#pragma once

// A table of typed fields, held in memory, with one cursor.
//
// The cursor stands on a row, before the first (an empty table) or at the end. A row that is
// deleted stays current until the next move, and MoveNext then lands on the row behind it; reading
// or setting a field of it is a failure, as is one at the end. Rows keep their order of adding;
// what a setter writes counts at once, there is no separate commit.
//
// Find on the equality of a text field goes through an index that is built at the first use and
// kept right by every change; its result is that of a scan from the cursor on.

#include "core/failure.h"
#include "store/layout.h"
#include "store/row.h"
#include "store/row_index.h"

#include <functional>
#include <optional>
#include <vector>

namespace tandolin {

/// Where a cursor stood; stays right when other rows are deleted.
struct Bookmark {
    std::size_t slot = 0;
    bool atEnd = true;
};

/// The part of a table that does not know its layout's type.
class TableCore {
public:
    explicit TableCore(const RowShape& shape) : shape_(shape) {}

    TableCore(const TableCore&) = delete;
    TableCore& operator=(const TableCore&) = delete;

    [[nodiscard]] std::span<const FieldSpec> fields() const { return shape_.fields(); }

    /// Rows, shown or not.
    [[nodiscard]] std::size_t recordCount() const { return live_; }

    [[nodiscard]] bool isEmpty() const { return live_ == 0; }

    /// True when the cursor stands on no row and no deleted one either.
    [[nodiscard]] bool atEnd() const { return cursor_ >= rows_.size(); }

    /// To the first row that is shown; the end when there is none.
    void MoveFirst();
    /// To the row behind the current one, deleted or not; the end behind the last.
    void MoveNext();

    /// Adds a row with all fields null; the cursor stands on it afterwards.
    void AddNew();

    /// Adds a row with the values of `source`, a row of the same layout that may belong to another
    /// table; the cursor stands on it.
    void AddCopy(const Row& source);

    /// Deletes the current row. The cursor stays where it is.
    void Delete();

    /// Removes all rows.
    void clear();

    /// One-based number of the current row among the rows, 0 at the end or on a deleted row.
    [[nodiscard]] std::size_t AbsolutePosition() const;
    /// To the row of this number; the end behind the last.
    void setAbsolutePosition(std::size_t position);

    [[nodiscard]] Bookmark bookmark() const { return {cursor_, atEnd()}; }

    /// Back to where a bookmark was taken.
    void goTo(Bookmark mark);

    /// Positions on the first row from the current one on (itself included) whose text field equals
    /// the value; false and the end when there is none.
    bool Find(std::size_t field, TextView value, Compare compare = Compare::exact);

    /// The same for the equality of a number field.
    bool Find(std::size_t field, std::int64_t value);

    /// How many rows have true in this field; counted along with every change after the first call.
    [[nodiscard]] std::size_t countTrue(std::size_t field);

    /// The lowest number from `first` (at least 1) to `last` (at most 65535) that no row holds in
    /// this text field as its plain decimal digits; nothing when all are held. Kept along with
    /// every change after the first call: no search of each number in turn.
    [[nodiscard]] std::optional<int> lowestUnused(std::size_t field, int first, int last);

    /// Rows that the predicate refuses are passed over by every move and search. An empty one ends
    /// it.
    void setFilter(std::function<bool(const Row&)> filter);

    /// Orders the rows by `before`, stably; the cursor goes to the first row.
    void Sort(const std::function<bool(const Row&, const Row&)>& before);

    /// The current row's values. Throws Failure 91 at the end or on a deleted row.
    [[nodiscard]] const Row& row() const;

    /// Takes all values of `source` by position, and what is known of its edit. The layouts are the
    /// same.
    void assignRow(const Row& source);

    // A recorded edit: the row, and every copy made of it from then on, knows its values from
    // before the user's changes, until what was changed is written. Only the organizer's items need
    // it: they hold more than a row tells, so nothing but what the user changed may be written.

    /// Keeps the current row's values; call it before the user's first change. An edit that is
    /// recorded already goes on.
    void beginEdit();
    /// Forgets them, once the changes are written or given up.
    void endEdit();

    [[nodiscard]] bool isEdited() const { return row().before() != nullptr; }

protected:
    void setNull(std::size_t field);
    void setNumber(std::size_t field, std::int64_t value);
    void setReal(std::size_t field, double value);
    void setText(std::size_t field, TextView value);

    /// The current row before its recorded edit, the row itself without one.
    [[nodiscard]] const Row& rowBefore() const { return isEdited() ? *row().before() : row(); }

private:
    struct TrueCount {
        std::size_t field;
        std::size_t count;
    };

    /// Which numbers a text field holds, and below which one all from 1 on are held.
    struct NumberUse {
        std::size_t field;
        std::vector<std::uint32_t> holders;
        std::size_t allHeldBelow = 1;

        void count(TextView text, bool add);
    };

    [[nodiscard]] Row& current();
    void skipToShown();
    [[nodiscard]] bool shown(std::size_t slot) const;
    RowIndex& indexFor(std::size_t field, Compare compare);
    template <class Value, class Equal>
    bool findFrom(RowIndex& index, Value value, Equal equal);

    [[nodiscard]] bool isWatched(std::size_t field) const { return (watched_ >> field & 1U) != 0; }

    void watch(std::size_t field) { watched_ |= std::uint64_t{1} << field; }

    template <class Change>
    void change(std::size_t field, Change makeChange);
    void enter(std::size_t slot, std::size_t field, bool add);
    void enterAll(std::size_t slot, bool add);

    const RowShape& shape_;
    std::vector<Row> rows_; // a deleted row leaves its slot empty
    std::size_t live_ = 0;
    std::size_t cursor_ = 0;
    std::uint64_t watched_ = 0; // fields with an index or a count
    std::vector<RowIndex> indexes_;
    std::vector<TrueCount> counts_;
    std::vector<NumberUse> numbers_;
    std::function<bool(const Row&)> filter_;
};

/// A table whose fields are those of `Layout` (see layout.h).
template <class L>
class Table : public TableCore {
public:
    Table() : TableCore(shape()) {}

    /// The value of the current row's field, or nothing where it was never set. A text view lives
    /// until that field changes.
    [[nodiscard]] std::optional<bool> get(Field<L, bool> f) const {
        return null(f) ? std::nullopt : std::optional(row().number(f.index()) != 0);
    }

    [[nodiscard]] std::optional<Date> get(Field<L, Date> f) const {
        return null(f) ? std::nullopt : std::optional(Date{row().real(f.index())});
    }

    [[nodiscard]] std::optional<TextView> get(Field<L, Text> f) const {
        return null(f) ? std::nullopt : std::optional(row().text(f.index()));
    }

    [[nodiscard]] std::optional<std::int64_t> get(Field<L, std::int64_t> f) const {
        return null(f) ? std::nullopt : std::optional(row().number(f.index()));
    }

    [[nodiscard]] std::optional<std::int32_t> get(Field<L, std::int32_t> f) const {
        return null(f) ? std::nullopt
                       : std::optional(static_cast<std::int32_t>(row().number(f.index())));
    }

    /// The same with false, 0, the date 0 or the empty text for a field that was never set.
    template <class T>
    [[nodiscard]] auto operator[](Field<L, T> f) const {
        return get(f).value_or(typename decltype(get(f))::value_type{});
    }

    void set(Field<L, bool> f, bool value) { setNumber(f.index(), value ? 1 : 0); }

    void set(Field<L, Date> f, Date value) { setReal(f.index(), value.days); }

    void set(Field<L, Text> f, TextView value) { setText(f.index(), value); }

    void set(Field<L, std::int64_t> f, std::int64_t value) { setNumber(f.index(), value); }

    void set(Field<L, std::int32_t> f, std::int32_t value) { setNumber(f.index(), value); }

    template <class T>
    void setNull(Field<L, T> f) {
        TableCore::setNull(f.index());
    }

    /// Did the recorded edit give the field another value? Without an edit nothing is changed.
    template <class T>
    [[nodiscard]] bool changed(Field<L, T> f) const {
        return !row().sameCell(f.index(), rowBefore());
    }

    /// The value before the recorded edit; without one as it is now.
    [[nodiscard]] bool before(Field<L, bool> f) const { return rowBefore().number(f.index()) != 0; }

    [[nodiscard]] Date before(Field<L, Date> f) const { return {rowBefore().real(f.index())}; }

    [[nodiscard]] TextView before(Field<L, Text> f) const { return rowBefore().text(f.index()); }

    [[nodiscard]] std::int64_t before(Field<L, std::int64_t> f) const {
        return rowBefore().number(f.index());
    }

    bool Find(Field<L, Text> f, TextView value, Compare compare = Compare::exact) {
        return TableCore::Find(f.index(), value, compare);
    }

    bool Find(Field<L, std::int32_t> f, std::int32_t value) {
        return TableCore::Find(f.index(), std::int64_t{value});
    }

    [[nodiscard]] std::size_t countTrue(Field<L, bool> f) {
        return TableCore::countTrue(f.index());
    }

    [[nodiscard]] std::optional<int> lowestUnused(Field<L, Text> f, int first, int last) {
        return TableCore::lowestUnused(f.index(), first, last);
    }

private:
    static const RowShape& shape() {
        static const RowShape one(L::fields);
        return one;
    }

    template <class T>
    [[nodiscard]] bool null(Field<L, T> f) const {
        return row().isNull(f.index());
    }
};

/// Puts a table's cursor back where it was when this goes out of scope.
class KeepPosition {
public:
    explicit KeepPosition(TableCore& table) : table_(table), mark_(table.bookmark()) {}

    KeepPosition(const KeepPosition&) = delete;
    KeepPosition& operator=(const KeepPosition&) = delete;

    ~KeepPosition() { table_.goTo(mark_); }

private:
    TableCore& table_;
    Bookmark mark_;
};

} // namespace tandolin
