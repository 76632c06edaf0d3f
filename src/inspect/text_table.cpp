#include "inspect/text_table.h"

#include <algorithm>

#include "ado/packed_number.h"
#include "startup/failure.h"

namespace kv {
namespace {

/// A chunk that has so many bytes takes no further row.
constexpr std::size_t kChunkBytes = std::size_t{1024} * 1024;

} // namespace

void TextTable::ReDim(std::int32_t last_column) {
    last_column_ = last_column;
    row_count_ = 0;
    chunks_.clear();
    GrowRow();
}

void TextTable::GrowRow() {
    CheckSized();
    if (chunks_.empty() || chunks_.back().cells.size() >= kChunkBytes) {
        const bool first = chunks_.empty();
        if (!first) {
            chunks_.back().row_starts.shrink_to_fit();
        }
        Chunk& chunk = chunks_.emplace_back();
        chunk.first_row = row_count_;
        if (!first) { // a small table stays small
            chunk.cells.reserve(kChunkBytes + kChunkBytes / 64);
        }
    }
    Chunk& chunk = chunks_.back();
    chunk.row_starts.push_back(static_cast<std::uint32_t>(chunk.cells.size()));
    ++row_count_;
}

void TextTable::Append(std::string_view text) {
    std::string& cells = chunks_.back().cells;
    ado::PutNumber(cells, text.size());
    cells += text;
}

std::int32_t TextTable::ColumnUpperBound() const {
    CheckSized();
    return last_column_;
}

std::int32_t TextTable::RowUpperBound() const {
    CheckSized();
    return static_cast<std::int32_t>(row_count_) - 1;
}

std::size_t TextTable::Bytes() const {
    std::size_t bytes = chunks_.capacity() * sizeof(Chunk);
    for (const Chunk& chunk : chunks_) {
        bytes += chunk.cells.capacity() + chunk.row_starts.capacity() * sizeof(std::uint32_t);
    }
    return bytes;
}

std::string TextTable::operator()(std::int32_t column, std::int32_t row) const {
    if (column < 0 || column > ColumnUpperBound() || row < 0 || row > RowUpperBound()) {
        RaiseRunTimeFailure(run_time::kSubscriptOutOfRange);
    }
    if (column == 0) {
        return {};
    }
    const Chunk& chunk = ChunkOf(static_cast<std::size_t>(row));
    const std::size_t index = static_cast<std::size_t>(row) - chunk.first_row;
    const bool last = index + 1 == chunk.row_starts.size();
    const std::size_t end = last ? chunk.cells.size() : chunk.row_starts[index + 1];
    std::size_t at = chunk.row_starts[index];
    for (std::int32_t i = 1; at < end; ++i) {
        const std::size_t size = ado::TakeNumber(chunk.cells, at);
        if (i == column) {
            return chunk.cells.substr(at, size);
        }
        at += size;
    }
    return {};
}

void TextTable::CheckSized() const {
    if (last_column_ < 0) {
        RaiseRunTimeFailure(run_time::kSubscriptOutOfRange);
    }
}

const TextTable::Chunk& TextTable::ChunkOf(std::size_t row) const {
    const auto behind = std::ranges::upper_bound(chunks_, row, {}, &Chunk::first_row);
    return *(behind - 1);
}

} // namespace kv
