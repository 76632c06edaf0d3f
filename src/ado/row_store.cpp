// Packs and unpacks values.
#include "ado/row_store.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>
#include <utility>

#include "text/code_page.h"

namespace ado {
namespace {

/// The memory of a chunk, and of the first one at its beginning: a small result stays small.
constexpr std::size_t kChunkBytes = platform::kLargePageBytes;
constexpr std::size_t kFirstBytes = 256;
/// A chunk with less room than this takes no further row, so that a chunk seldom has to grow for its last
/// row.
constexpr std::size_t kRowBytes = kChunkBytes / 64;

/// The kind of a value: the index of its type in the variant. It is in the lower four bits of the value's
/// first byte.
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

/// The upper four bits are a number whose meaning depends on the kind: the value itself, or a size. This
/// value means that the number follows in packed form.
constexpr std::size_t kNumberFollows = 15;

char FirstByte(std::size_t kind, std::uint64_t number = 0) {
    return static_cast<char>(kind | (number << kKindBits));
}

// Whole numbers are packed into as few bytes as they need: seven bits to a byte, the lowest first; the top
// bit says that another byte follows.

/// The most bytes that a number takes.
constexpr std::size_t kLongestNumber = (64 + 6) / 7;

/// Each of these functions returns the end of the written bytes.
char* PutNumber(char* to, std::uint64_t number) {
    while (number >= 0x80) {
        *to++ = static_cast<char>((number & 0x7F) | 0x80);
        number >>= 7U;
    }
    *to++ = static_cast<char>(number);
    return to;
}

/// Returns the number at `from`, and moves `from` past it.
std::uint64_t TakeNumber(const char*& from) {
    std::uint64_t number = 0;
    for (unsigned shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(*from++);
        number |= std::uint64_t{byte & 0x7FU} << shift;
        if (byte < 0x80) {
            return number;
        }
    }
}

/// Makes the sign the lowest bit, so that small negative numbers are short too.
std::uint64_t Zigzag(std::int64_t value) {
    return (static_cast<std::uint64_t>(value) << 1U) ^ (value < 0 ? ~std::uint64_t{0} : 0);
}

std::int64_t FromZigzag(std::uint64_t bits) {
    return static_cast<std::int64_t>((bits >> 1U) ^ ((bits & 1U) != 0 ? ~std::uint64_t{0} : 0));
}

/// Appends the first byte of a value and the value's bytes as memory holds them.
template <class T>
char* PutRaw(char* to, std::size_t kind, const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    *to++ = FirstByte(kind);
    std::memcpy(to, &value, sizeof value);
    return to + sizeof value;
}

/// The largest number of bytes that a value takes before its text.
constexpr std::size_t kLongestHead = 1 + kLongestNumber;

/// Writes the first byte of a value, with the number in it or after it.
char* PutCounted(char* to, std::size_t kind, std::uint64_t number) {
    if (number < kNumberFollows) {
        *to++ = FirstByte(kind, number);
        return to;
    }
    *to++ = FirstByte(kind, kNumberFollows);
    return PutNumber(to, number);
}

/// Adds a value of a Variant to the store.
struct ValuePutter {
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
    explicit Reader(const char* at) : at_(at) {}

    Variant Next() {
        static constexpr std::array<Variant (Reader::*)(), std::variant_size_v<Variant::Storage>> kKinds = {
            &Reader::Empty,       &Reader::Nothing, &Reader::Boolean,   &Reader::Whole,  &Reader::Raw<float>,
            &Reader::Raw<double>, &Reader::Exact,   &Reader::Raw<Date>, &Reader::String, &Reader::Bytes};
        const auto byte = static_cast<unsigned char>(*at_++);
        number_ = byte >> kKindBits;
        return (this->*kKinds.at(byte & kKindMask))();
    }

    void Skip() {
        const auto byte = static_cast<unsigned char>(*at_++);
        number_ = byte >> kKindBits;
        switch (byte & kKindMask) {
        case KindOf<std::int64_t>():
            Number();
            break;
        case KindOf<float>():
            at_ += sizeof(float);
            break;
        case KindOf<double>():
            at_ += sizeof(double);
            break;
        case KindOf<Date>():
            at_ += sizeof(Date);
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

    /// The byte after the last value.
    const char* At() const { return at_; }

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
        std::memcpy(&value, at_, sizeof value);
        at_ += sizeof value;
        return value;
    }

    std::uint64_t Number() { return number_ < kNumberFollows ? number_ : TakeNumber(at_); }
    std::string_view Text() {
        const auto size = static_cast<std::size_t>(Number());
        return {std::exchange(at_, at_ + size), size};
    }

    const char* at_;           ///< the next byte to read
    std::uint64_t number_ = 0; ///< the number in the first byte of the value
};

} // namespace

void RowStore::Append(const std::vector<Variant>& row) {
    BeginRow();
    for (const Variant& value : row) {
        std::visit(ValuePutter{*this}, value.Get());
    }
}

RowStore::Chunk::Chunk(std::size_t row, std::size_t bytes)
    : first_row(row), values(platform::AllocateBlock(bytes)), capacity(bytes) {}

void RowStore::Chunk::Reserve(std::size_t bytes) {
    platform::MemoryBlock larger = platform::AllocateBlock(bytes);
    std::copy_n(values.get(), size, larger.get());
    values = std::move(larger);
    capacity = bytes;
}

void RowStore::BeginRow() {
    if (chunks_.empty()) {
        chunks_.emplace_back(row_count_, kFirstBytes);
    } else if (chunks_.back().size + kRowBytes > kChunkBytes) {
        chunks_.back().row_starts.shrink_to_fit();
        chunks_.emplace_back(row_count_, kChunkBytes);
    }
    chunks_.back().row_starts.push_back(static_cast<std::uint32_t>(chunks_.back().size));
    ++row_count_;
}

char* RowStore::Room(std::size_t bytes) {
    Chunk& chunk = chunks_.back();
    if (chunk.capacity - chunk.size < bytes) {
        chunk.Reserve(std::max(chunk.capacity * 2, chunk.size + bytes));
    }
    return chunk.values.get() + chunk.size;
}

void RowStore::Wrote(const char* end) {
    Chunk& chunk = chunks_.back();
    chunk.size = static_cast<std::size_t>(end - chunk.values.get());
}

void RowStore::PutEmpty() {
    Wrote(PutCounted(Room(1), KindOf<std::monostate>(), 0));
}
void RowStore::PutNull() {
    Wrote(PutCounted(Room(1), KindOf<Null>(), 0));
}
void RowStore::PutBoolean(bool value) {
    Wrote(PutCounted(Room(1), KindOf<bool>(), value ? 1 : 0));
}
void RowStore::PutWhole(std::int64_t value) {
    Wrote(PutCounted(Room(kLongestHead), KindOf<std::int64_t>(), Zigzag(value)));
}
void RowStore::PutSingle(float value) {
    Wrote(PutRaw(Room(1 + sizeof value), KindOf<float>(), value));
}
void RowStore::PutDouble(double value) {
    Wrote(PutRaw(Room(1 + sizeof value), KindOf<double>(), value));
}
void RowStore::PutDate(const Date& value) {
    Wrote(PutRaw(Room(1 + sizeof value), KindOf<Date>(), value));
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
    char* const at = PutCounted(Room(kLongestHead + bytes.size()), kind, bytes.size());
    Wrote(std::copy(bytes.begin(), bytes.end(), at));
}

void RowStore::PutWideSized(std::size_t kind, std::u16string_view text) {
    char* const begin = Room(kLongestHead + text.size());
    char* const narrow = PutCounted(begin, kind, text.size());
    const char* const end = text::NarrowTo(narrow, text);
    const auto size = static_cast<std::size_t>(end - narrow);
    if (size == text.size()) {
        Wrote(end);
        return;
    }
    // A character of two UTF-16 units became one byte. The smaller number may take fewer bytes.
    char* const moved = PutCounted(begin, kind, size);
    std::memmove(moved, narrow, size);
    Wrote(moved + size);
}

void RowStore::Read(Place& place, std::vector<Variant>& row) const {
    if (place.offset == chunks_[place.chunk].size) {
        ++place.chunk;
        place.offset = 0;
    }
    const char* const values = chunks_[place.chunk].values.get();
    Reader reader(values + place.offset);
    for (Variant& value : row) {
        value = reader.Next();
    }
    place.offset = static_cast<std::size_t>(reader.At() - values);
}

Variant RowStore::Value(std::size_t row, std::size_t column) const {
    const Chunk& chunk = *(std::ranges::upper_bound(chunks_, row, {}, &Chunk::first_row) - 1);
    Reader reader(chunk.values.get() + chunk.row_starts[row - chunk.first_row]);
    for (; column > 0; --column) {
        reader.Skip();
    }
    return reader.Next();
}

std::size_t RowStore::Bytes() const {
    std::size_t bytes = chunks_.capacity() * sizeof(Chunk);
    for (const Chunk& chunk : chunks_) {
        bytes += chunk.capacity + chunk.row_starts.capacity() * sizeof(std::uint32_t);
    }
    return bytes;
}

} // namespace ado
