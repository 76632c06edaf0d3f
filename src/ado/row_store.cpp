#include "ado/row_store.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>
#include <utility>

#include "text/code_page.h"

namespace ado {
namespace {

/// A chunk of this size takes no further row.
constexpr std::size_t kChunkBytes = std::size_t{1024} * 1024;

/// The lower four bits of a value's first byte are its kind: the index of its type in the variant.
template <class T, std::size_t Index = 0>
constexpr std::size_t KindOf() {
    if constexpr (std::is_same_v<std::variant_alternative_t<Index, Variant::Storage>, T>) {
        return Index;
    } else {
        return KindOf<T, Index + 1>();
    }
}
constexpr unsigned kKindBits = 4;
constexpr unsigned kKindMask = (1U << kKindBits) - 1;
static_assert(std::variant_size_v<Variant::Storage> <= kKindMask);

/// The upper four bits are a number whose meaning depends on the kind. This value means that the number
/// follows in packed form.
constexpr std::size_t kFollows = 15;

char FirstByte(std::size_t kind, std::uint64_t number = 0) {
    return static_cast<char>(kind | (number << kKindBits));
}

// Whole numbers are packed into as few bytes as they need: seven bits to a byte, the lowest first; the top
// bit says that another byte follows.

void PutNumber(std::string& to, std::uint64_t number) {
    while (number >= 0x80) {
        to += static_cast<char>((number & 0x7F) | 0x80);
        number >>= 7U;
    }
    to += static_cast<char>(number);
}

/// The number at `offset`, which is moved to the byte after it.
std::uint64_t TakeNumber(const std::string& from, std::size_t& offset) {
    std::uint64_t number = 0;
    for (unsigned shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(from[offset++]);
        number |= std::uint64_t{byte & 0x7FU} << shift;
        if (byte < 0x80) {
            return number;
        }
    }
}

/// The sign becomes the lowest bit, so that small negative numbers are short too.
std::uint64_t Zigzag(std::int64_t value) {
    return (static_cast<std::uint64_t>(value) << 1U) ^ (value < 0 ? ~std::uint64_t{0} : 0);
}

std::int64_t FromZigzag(std::uint64_t bits) {
    return static_cast<std::int64_t>((bits >> 1U) ^ ((bits & 1U) != 0 ? ~std::uint64_t{0} : 0));
}

template <class T>
void PutRaw(std::string& to, std::size_t kind, const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    char packed[1 + sizeof value];
    packed[0] = FirstByte(kind);
    std::memcpy(packed + 1, &value, sizeof value);
    to.append(packed, sizeof packed);
}

/// Appends the first byte of a value, with the number in it or after it.
void PutCounted(std::string& to, std::size_t kind, std::uint64_t number) {
    if (number < kFollows) {
        to += FirstByte(kind, number);
    } else {
        to += FirstByte(kind, kFollows);
        PutNumber(to, number);
    }
}

struct Putter {
    RowStore& store;

    void operator()(std::monostate) const { store.PutEmpty(); }
    void operator()(Null) const { store.PutNull(); }
    void operator()(bool value) const { store.PutBoolean(value); }
    void operator()(std::int64_t value) const { store.PutWhole(value); }
    void operator()(float value) const { store.PutSingle(value); }
    void operator()(double value) const { store.PutDouble(value); }
    void operator()(const Decimal& value) const { store.PutDecimal(value.digits); }
    void operator()(const Date& value) const { store.PutDate(value); }
    void operator()(const std::string& value) const { store.PutText(value); }
    void operator()(const ByteArray& value) const { store.PutBytes(value.data); }
};

/// Reads the values of a row, one after the other.
class Reader {
  public:
    Reader(const std::string& from, std::size_t& offset) : from_(from), offset_(offset) {}

    Variant Next() {
        static constexpr std::array<Variant (Reader::*)(), std::variant_size_v<Variant::Storage>> kKinds = {
            &Reader::Empty,       &Reader::Nothing, &Reader::Boolean,   &Reader::Whole,  &Reader::Raw<float>,
            &Reader::Raw<double>, &Reader::Exact,   &Reader::Raw<Date>, &Reader::String, &Reader::Bytes};
        const auto byte = static_cast<unsigned char>(from_[offset_++]);
        number_ = byte >> kKindBits;
        return (this->*kKinds.at(byte & kKindMask))();
    }

    void Skip() {
        const auto byte = static_cast<unsigned char>(from_[offset_++]);
        number_ = byte >> kKindBits;
        switch (byte & kKindMask) {
        case KindOf<std::int64_t>():
            Number();
            break;
        case KindOf<float>():
            offset_ += sizeof(float);
            break;
        case KindOf<double>():
            offset_ += sizeof(double);
            break;
        case KindOf<Date>():
            offset_ += sizeof(Date);
            break;
        case KindOf<Decimal>():
        case KindOf<std::string>():
        case KindOf<ByteArray>():
            Text();
            break;
        default: // nothing after the first byte
            break;
        }
    }

  private:
    Variant Empty() { return {}; }
    Variant Nothing() { return Null(); }
    Variant Boolean() { return number_ != 0; }
    Variant Whole() { return FromZigzag(Number()); }
    Variant Exact() { return Decimal{std::string(Text())}; }
    Variant String() { return std::string(Text()); }
    Variant Bytes() { return ByteArray{std::string(Text())}; }
    template <class T>
    Variant Raw() {
        T value;
        std::memcpy(&value, from_.data() + offset_, sizeof value);
        offset_ += sizeof value;
        return value;
    }

    std::uint64_t Number() { return number_ < kFollows ? number_ : TakeNumber(from_, offset_); }
    std::string_view Text() {
        const auto size = static_cast<std::size_t>(Number());
        return std::string_view(from_).substr(std::exchange(offset_, offset_ + size), size);
    }

    const std::string& from_;
    std::size_t& offset_;
    std::uint64_t number_ = 0; ///< of the value's first byte
};

} // namespace

void RowStore::Append(const std::vector<Variant>& row) {
    BeginRow();
    for (const Variant& value : row) {
        std::visit(Putter{*this}, value.Get());
    }
}

void RowStore::BeginRow() {
    if (chunks_.empty() || Values().size() >= kChunkBytes) {
        const bool first = chunks_.empty();
        if (!first) {
            chunks_.back().row_starts.shrink_to_fit();
        }
        Chunk& chunk = chunks_.emplace_back();
        chunk.first_row = row_count_;
        if (!first) { // the first chunk grows as needed: a small result stays small
            chunk.values.reserve(kChunkBytes + kChunkBytes / 64);
        }
    }
    chunks_.back().row_starts.push_back(static_cast<std::uint32_t>(Values().size()));
    ++row_count_;
}

void RowStore::PutEmpty() {
    Values() += FirstByte(KindOf<std::monostate>());
}
void RowStore::PutNull() {
    Values() += FirstByte(KindOf<Null>());
}
void RowStore::PutBoolean(bool value) {
    Values() += FirstByte(KindOf<bool>(), value ? 1 : 0);
}
void RowStore::PutWhole(std::int64_t value) {
    PutCounted(Values(), KindOf<std::int64_t>(), Zigzag(value));
}
void RowStore::PutSingle(float value) {
    PutRaw(Values(), KindOf<float>(), value);
}
void RowStore::PutDouble(double value) {
    PutRaw(Values(), KindOf<double>(), value);
}
void RowStore::PutDate(const Date& value) {
    PutRaw(Values(), KindOf<Date>(), value);
}
void RowStore::PutDecimal(std::string_view digits) {
    PutSized(KindOf<Decimal>(), digits);
}
void RowStore::PutText(std::string_view text) {
    PutSized(KindOf<std::string>(), text);
}
void RowStore::PutBytes(std::string_view bytes) {
    PutSized(KindOf<ByteArray>(), bytes);
}
void RowStore::PutWideDecimal(std::u16string_view digits) {
    PutWideSized(KindOf<Decimal>(), digits);
}
void RowStore::PutWideText(std::u16string_view text) {
    PutWideSized(KindOf<std::string>(), text);
}

void RowStore::PutSized(std::size_t kind, std::string_view bytes) {
    PutCounted(Values(), kind, bytes.size());
    Values() += bytes;
}

void RowStore::PutWideSized(std::size_t kind, std::u16string_view text) {
    std::string& values = Values();
    const std::size_t begin = values.size();
    PutCounted(values, kind, text.size());
    const std::size_t text_begin = values.size();
    text::AppendNarrow(values, text);
    const std::size_t size = values.size() - text_begin;
    if (size != text.size()) { // a character of two UTF-16 units became one byte
        const std::string narrow = values.substr(text_begin);
        values.resize(begin);
        PutSized(kind, narrow);
    }
}

void RowStore::Read(Place& place, std::vector<Variant>& row) const {
    if (place.offset == chunks_[place.chunk].values.size()) {
        ++place.chunk;
        place.offset = 0;
    }
    Reader reader(chunks_[place.chunk].values, place.offset);
    for (Variant& value : row) {
        value = reader.Next();
    }
}

Variant RowStore::Value(std::size_t row, std::size_t column) const {
    const Chunk& chunk = *(std::ranges::upper_bound(chunks_, row, {}, &Chunk::first_row) - 1);
    std::size_t offset = chunk.row_starts[row - chunk.first_row];
    Reader reader(chunk.values, offset);
    for (; column > 0; --column) {
        reader.Skip();
    }
    return reader.Next();
}

std::size_t RowStore::Bytes() const {
    std::size_t bytes = chunks_.capacity() * sizeof(Chunk);
    for (const Chunk& chunk : chunks_) {
        bytes += chunk.values.capacity() + chunk.row_starts.capacity() * sizeof(std::uint32_t);
    }
    return bytes;
}

} // namespace ado
