// Collects errors and makes the text that shows them.
#include "managers/db_errors.h"

#include "platform/files.h"
#include "platform/message_box.h"

namespace kv {
namespace {

constexpr const char* kBetweenRecords = "\r\n----------------------------------------------\r\n\r\n";

} // namespace

DbError& DbErrors::operator[](std::int32_t index) {
    if (index < 0 || index > UpperBound()) {
        RaiseRunTimeFailure(run_time::kSubscriptOutOfRange);
    }
    return records_[static_cast<std::size_t>(index)];
}

const DbError& DbErrors::operator[](std::int32_t index) const {
    if (index < 0 || index > UpperBound()) {
        RaiseRunTimeFailure(run_time::kSubscriptOutOfRange);
    }
    return records_[static_cast<std::size_t>(index)];
}

void ResetDbErrors(DbErrors& arrErrors) {
    arrErrors.Reset();
}

void CollectDbErrors(DbErrors& arrErrors, const ado::Errors& errors) {
    if (errors.Count() == 0) {
        return;
    }
    const Int16 base(arrErrors.UpperBound());
    for (std::int32_t i = 0; i < errors.Count(); ++i) {
        const Int16 place(i);
        if (errors.Item(place.Value()).Number == 0) {
            continue;
        }
        arrErrors.Grow();
        // The index counts the entries that are left out, but the array grows only for those that are stored.
        // So an entry after one that is left out has an index outside the array. Callers rely on this
        // failure: it takes the operation to its failure path.
        const Int16 index = base + place + Int16(1);
        DbError& record = arrErrors[index.Value()];
        record.Number = errors.Item(place.Value()).Number;
        record.Description = errors.Item(place.Value()).Description;
        record.Source = errors.Item(place.Value()).Source;
        record.NativeError = errors.Item(place.Value()).NativeError;
        record.SQLState = errors.Item(place.Value()).SQLState;
    }
}

std::string FormatDbErrors(const DbErrors& arrErrors) {
    std::string text;
    const Int16 last(arrErrors.UpperBound());
    for (std::int32_t i = 1; i <= last.Value(); ++i) {
        const DbError& record = arrErrors[i];
        if (i > 1) {
            text += kBetweenRecords;
        }
        text += "Error:\t" + std::to_string(record.Number) + "\r\n";
        text += "Desc:\t" + record.Description + "\r\n";
        text += "\t" + std::to_string(record.NativeError) + "\r\n";
        text += "\t" + record.Source + "\r\n";
        text += "\t" + record.SQLState + "\r\n";
    }
    return text;
}

void ManagerErrors::ShowDbError() const {
    const std::string text = FormatDbErrors(db_errors_);
    if (!text.empty()) {
        platform::ShowMessageBox(text, platform::MessageIcon::Exclamation, platform::ExecutableName());
    }
}

Int16 ManagerErrors::ErrorCount() const {
    return Int16(db_errors_.UpperBound());
}

DbError ManagerErrors::DbErrorAt(Int16 intIndex) const {
    static_cast<void>(intIndex);
    RaiseRunTimeFailure(run_time::kSubscriptOutOfRange);
}

} // namespace kv
