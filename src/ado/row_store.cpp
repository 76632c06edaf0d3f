#include "ado/row_store.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "ado/packed_number.h"

namespace ado {
namespace {

constexpr std::size_t kChunkBytes = std::size_t{1024} * 1024;

class Writer {
  public:
    explicit Writer(std::string& to) : to_(to) {}

    void operator()(std::monostate) const {}
    void operator()(Null) const {}
    void operator()(bool value) const { to_ += value ? '\1' : '\0'; }
    void operator()(std::int64_t value) const {
        // The sign goes last, so that small negative numbers are short too.
        const auto bits = static_cast<std::uint64_t>(value);
        PutNumber(to_, (bits << 1U) ^ (value < 0 ? ~std::uint64_t{0} : 0));
    }
    void operator()(float value) const { Raw(value); }
    void operator()(double value) const { Raw(value); }
    void operator()(const Decimal& value) const { Text(value.digits); }
    void operator()(const Date& value) const { Raw(value); }
    void operator()(const std::string& value) const { Text(value); }
    void operator()(const ByteArray& value) const { Text(value.data); }

  private:
    template <class T>
    void Raw(const T& value) const {
        static_assert(std::is_trivially_copyable_v<T>);
        to_.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    void Text(const std::string& text) const {
        PutNumber(to_, text.size());
        to_ += text;
    }

    std::string& to_;
};

class Reader {
  public:
    Reader(const std::string& from, std::size_t& offset) : from_(from), offset_(offset) {}

    Variant Next() {
        static constexpr std::array<Variant (Reader::*)(), std::variant_size_v<Variant::Storage>> kKinds = {
            &Reader::Empty,       &Reader::Nothing, &Reader::Boolean,   &Reader::Whole,  &Reader::Raw<float>,
            &Reader::Raw<double>, &Reader::Exact,   &Reader::Raw<Date>, &Reader::String, &Reader::Bytes};
        const auto kind = static_cast<unsigned char>(from_[offset_++]);
        return (this->*kKinds.at(kind))();
    }

  private:
    Variant Empty() { return {}; }
    Variant Nothing() { return Null(); }
    Variant Boolean() { return from_[offset_++] != '\0'; }
    Variant Whole() {
        const std::uint64_t number = Number();
        return static_cast<std::int64_t>((number >> 1U) ^ ((number & 1U) != 0 ? ~std::uint64_t{0} : 0));
    }
    Variant Exact() { return Decimal{Text()}; }
    Variant String() { return Text(); }
    Variant Bytes() { return ByteArray{Text()}; }
    template <class T>
    Variant Raw() {
        T value;
        std::memcpy(&value, from_.data() + offset_, sizeof value);
        offset_ += sizeof value;
        return value;
    }

    std::uint64_t Number() { return TakeNumber(from_, offset_); }
    std::string Text() {
        const std::size_t size = Number();
        std::string text = from_.substr(offset_, size);
        offset_ += size;
        return text;
    }

    const std::string& from_;
    std::size_t& offset_;
};

} // namespace

void RowStore::Append(const std::vector<Variant>& row) {
    if (chunks_.empty()) {
        chunks_.emplace_back();
    } else if (chunks_.back().size() >= kChunkBytes) {
        chunks_.emplace_back().reserve(kChunkBytes + kChunkBytes / 16);
    }
    std::string& chunk = chunks_.back();
    for (const Variant& value : row) {
        chunk += static_cast<char>(value.Get().index());
        std::visit(Writer(chunk), value.Get());
    }
    ++row_count_;
}

void RowStore::Read(Place& place, std::vector<Variant>& row) const {
    if (place.offset == chunks_[place.chunk].size()) {
        ++place.chunk;
        place.offset = 0;
    }
    Reader reader(chunks_[place.chunk], place.offset);
    for (Variant& value : row) {
        value = reader.Next();
    }
}

} // namespace ado
