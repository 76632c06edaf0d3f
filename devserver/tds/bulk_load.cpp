// Reads the rows of a bulk load while their packets arrive. See bulk_load.h.
#include "devserver/tds/bulk_load.h"

#include <utility>

#include "devserver/tsql/scalar/text.h"

namespace devsql::tds {

namespace {

/// Bytes. A row that is longer than this ends the load.
constexpr std::size_t kLongestRow = kLargestMessage;
constexpr std::uint16_t kNoColumns = 0xFFFF;
constexpr std::size_t kTimestampSize = 8;
constexpr std::uint8_t kDone = static_cast<std::uint8_t>(DoneToken::Done);

bool HasTextPointer(WireType wire) {
    return wire == WireType::Text || wire == WireType::NText || wire == WireType::Image;
}

std::string ReadShortText(ByteReader& reader) {
    return FromUtf16Le(reader.Take(std::size_t{reader.Byte()} * 2));
}

/// Skips the name of the table that the description of a text column has. It is a single text in every
/// version; in an answer it is a list of parts since 7.2.
void SkipTableName(ByteReader& reader) {
    reader.Take(std::size_t{reader.Le<std::uint16_t>()} * 2);
}

} // namespace

BulkRows::Step BulkReader::Next(std::vector<Value>& row) {
    while (!ended_) {
        if (buffer_.size() - position_ < wanted_ && !More()) {
            if (state_ == State::Open) {
                return Step::Waiting;
            }
            if (state_ != State::Whole) {
                return Step::Gone;
            }
            if (columns_ && position_ == buffer_.size()) {
                break; // FreeTDS writes no DONE after its rows.
            }
            wanted_ = buffer_.size() - position_; // No more bytes come.
        }
        ByteReader reader(std::string_view(buffer_).substr(position_));
        try {
            const Step step = Read(reader, row);
            if (step == Step::End && state_ != State::Whole) {
                // The last packet of the message says whether the client cancels it.
                wanted_ = buffer_.size() - position_ + 1;
                continue;
            }
            position_ += reader.position();
            wanted_ = 1;
            if (step != Step::Waiting) {
                ended_ = step == Step::End;
                return step;
            }
        } catch (const ProtocolError& error) {
            const std::size_t had = buffer_.size() - position_;
            if (error.number() != error_number::kStreamEnded || state_ != State::Open || had > kLongestRow) {
                error_ = error;
                return Step::Gone;
            }
            // The row goes on in a later packet. Each time twice as many bytes are waited for, since the row
            // is read again from its beginning.
            wanted_ = had * 2;
        }
    }
    return Step::End;
}

bool BulkReader::More() {
    buffer_.erase(0, position_);
    position_ = 0;
    if (state_ == State::Open) {
        TakePacket();
    }
    return buffer_.size() >= wanted_;
}

void BulkReader::TakePacket() {
    try {
        const ClientPacket packet = next_packet_();
        buffer_ += packet.data;
        if (packet.IsLast()) {
            state_ = packet.IsIgnored() ? State::TakenBack : State::Whole;
        }
    } catch (const ConnectionLost&) {
        state_ = State::Lost;
    } catch (const ProtocolError& error) {
        state_ = State::Lost;
        error_ = error;
    }
}

BulkReader::State BulkReader::Drain() {
    while (state_ == State::Open) {
        buffer_.clear();
        TakePacket();
    }
    return state_;
}

BulkRows::Step BulkReader::Read(ByteReader& reader, std::vector<Value>& row) {
    switch (reader.Byte()) {
    case token::kColumnMetadata:
        ReadColumns(reader);
        return Step::Waiting;
    case token::kRow:
        ReadRow(reader, row);
        return Step::Row;
    case kDone:
        return Step::End;
    default:
        throw ProtocolError(
            error_number::kStreamEnded, kRequestSeverity,
            "The incoming tabular data stream (TDS) bulk load protocol stream is incorrect. A token "
            "came that is neither columns nor a row nor the end.");
    }
}

void BulkReader::ReadColumns(ByteReader& reader) {
    std::vector<BulkColumn> columns;
    const auto count = reader.Le<std::uint16_t>();
    for (int i = 1; count != kNoColumns && i <= count; ++i) {
        BulkColumn column{{}, {i, {}, true}};
        reader.Take(Has72(version_) ? sizeof(std::uint32_t) : sizeof(std::uint16_t)); // the user type
        reader.Take(sizeof(std::uint16_t));                                           // flags
        column.format = ReadFormat(reader, version_, column.place);
        if (HasTextPointer(column.format.wire)) {
            SkipTableName(reader);
        }
        column.place.name = ReadShortText(reader);
        columns.push_back(std::move(column));
    }
    types_.clear();
    for (const BulkColumn& column : columns) {
        types_.push_back(column.format.type);
    }
    columns_ = std::move(columns);
}

void BulkReader::ReadRow(ByteReader& reader, std::vector<Value>& row) const {
    if (!columns_) {
        throw StreamEnded();
    }
    row.clear();
    for (const BulkColumn& column : *columns_) {
        if (HasTextPointer(column.format.wire)) {
            const std::size_t pointer = reader.Byte();
            if (pointer == 0) {
                row.emplace_back();
                continue;
            }
            reader.Take(pointer + kTimestampSize);
        }
        row.push_back(ReadValue(reader, column.format, column.place));
    }
}

} // namespace devsql::tds
