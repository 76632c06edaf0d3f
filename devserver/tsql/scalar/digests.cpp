// All three cut the text into blocks of 64 bytes, the last one filled up with its length (RFC 1321, FIPS
// 180-4).
#include "devserver/tsql/scalar/digests.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace devsql {
namespace {

constexpr std::size_t kBlock = 64;

enum class ByteOrder : std::uint8_t { Little, Big };

/// The bits that 8-bit bytes are moved by to the place `index` of a number of `size` bytes.
int ShiftOf(std::size_t index, std::size_t size, ByteOrder order) {
    return static_cast<int>(8 * (order == ByteOrder::Little ? index : size - 1 - index));
}

std::string Padded(std::string text, ByteOrder order) {
    const std::uint64_t bits = text.size() * 8;
    text += '\x80';
    while (text.size() % kBlock != kBlock - 8) {
        text += '\0';
    }
    for (std::size_t i = 0; i < 8; ++i) {
        text += static_cast<char>(bits >> ShiftOf(i, 8, order) & 0xFF);
    }
    return text;
}

/// The words of the block at `at`; further ones are left 0.
template <std::size_t Count>
std::array<std::uint32_t, Count> WordsOf(const std::string& text, std::size_t at, ByteOrder order) {
    std::array<std::uint32_t, Count> words{};
    for (std::size_t i = 0; i < kBlock; ++i) {
        const auto byte = static_cast<std::uint32_t>(static_cast<unsigned char>(text[at + i]));
        words[i / 4] |= byte << ShiftOf(i % 4, 4, order);
    }
    return words;
}

template <std::size_t Count>
std::string BytesOf(const std::array<std::uint32_t, Count>& digest, ByteOrder order) {
    std::string bytes;
    for (const std::uint32_t word : digest) {
        for (std::size_t i = 0; i < 4; ++i) {
            bytes += static_cast<char>(word >> ShiftOf(i, 4, order) & 0xFF);
        }
    }
    return bytes;
}

// ------------------------------------------------------------------ MD5

/// The whole part of 2^32 times the sine of 1 to 64.
std::uint32_t SineWord(std::size_t round) {
    return static_cast<std::uint32_t>(
        static_cast<std::uint64_t>(std::abs(std::sin(static_cast<double>(round + 1))) * 4294967296.0));
}

void Md5Block(std::array<std::uint32_t, 4>& digest, const std::array<std::uint32_t, 16>& words) {
    constexpr std::array<std::array<int, 4>, 4> kTurns = {
        {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}}};
    constexpr std::array<std::size_t, 4> kFactors = {1, 5, 3, 7};
    constexpr std::array<std::size_t, 4> kOffsets = {0, 1, 5, 0};
    auto [a, b, c, d] = digest;
    for (std::size_t i = 0; i < 64; ++i) {
        const std::size_t part = i / 16;
        const std::uint32_t mixed = part == 0   ? (b & c) | (~b & d)
                                    : part == 1 ? (d & b) | (~d & c)
                                    : part == 2 ? b ^ c ^ d
                                                : c ^ (b | ~d);
        const std::uint32_t word = words[(kFactors[part] * i + kOffsets[part]) % 16];
        const std::uint32_t turned = std::rotl(a + mixed + SineWord(i) + word, kTurns[part][i % 4]);
        a = d;
        d = c;
        c = b;
        b += turned;
    }
    digest = {digest[0] + a, digest[1] + b, digest[2] + c, digest[3] + d};
}

// ------------------------------------------------------------------ SHA-1

void Sha1Block(std::array<std::uint32_t, 5>& digest, std::array<std::uint32_t, 80> words) {
    constexpr std::array<std::uint32_t, 4> kRounds = {0x5a827999, 0x6ed9eba1, 0x8f1bbcdc, 0xca62c1d6};
    for (std::size_t i = 16; i < words.size(); ++i) {
        words[i] = std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
    }
    auto [a, b, c, d, e] = digest;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::size_t part = i / 20;
        const std::uint32_t mixed = part == 0   ? (b & c) | (~b & d)
                                    : part == 2 ? (b & c) | (b & d) | (c & d)
                                                : b ^ c ^ d;
        const std::uint32_t next = std::rotl(a, 5) + mixed + e + kRounds[part] + words[i];
        e = d;
        d = c;
        c = std::rotl(b, 30);
        b = a;
        a = next;
    }
    digest = {digest[0] + a, digest[1] + b, digest[2] + c, digest[3] + d, digest[4] + e};
}

// ------------------------------------------------------------------ SHA-256

/// The first 32 bits of the fractional parts of the cube roots of the first 64 primes.
constexpr std::array<std::uint32_t, 64> kRound = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

void Sha256Block(std::array<std::uint32_t, 8>& digest, std::array<std::uint32_t, 64> w) {
    for (std::size_t i = 16; i < 64; ++i) {
        const std::uint32_t a = w[i - 15];
        const std::uint32_t b = w[i - 2];
        w[i] = w[i - 16] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ (a >> 3)) + w[i - 7] +
               (std::rotr(b, 17) ^ std::rotr(b, 19) ^ (b >> 10));
    }
    std::array<std::uint32_t, 8> v = digest;
    for (std::size_t i = 0; i < 64; ++i) {
        const std::uint32_t s1 = std::rotr(v[4], 6) ^ std::rotr(v[4], 11) ^ std::rotr(v[4], 25);
        const std::uint32_t t1 = v[7] + s1 + ((v[4] & v[5]) ^ (~v[4] & v[6])) + kRound[i] + w[i];
        const std::uint32_t s0 = std::rotr(v[0], 2) ^ std::rotr(v[0], 13) ^ std::rotr(v[0], 22);
        const std::uint32_t t2 = s0 + ((v[0] & v[1]) ^ (v[0] & v[2]) ^ (v[1] & v[2]));
        v = {t1 + t2, v[0], v[1], v[2], v[3] + t1, v[4], v[5], v[6]};
    }
    for (std::size_t i = 0; i < 8; ++i) {
        digest[i] += v[i];
    }
}

} // namespace

std::string Md5(std::string text) {
    const std::string padded = Padded(std::move(text), ByteOrder::Little);
    std::array<std::uint32_t, 4> digest = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    for (std::size_t at = 0; at < padded.size(); at += kBlock) {
        Md5Block(digest, WordsOf<16>(padded, at, ByteOrder::Little));
    }
    return BytesOf(digest, ByteOrder::Little);
}

std::string Sha1(std::string text) {
    const std::string padded = Padded(std::move(text), ByteOrder::Big);
    std::array<std::uint32_t, 5> digest = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0};
    for (std::size_t at = 0; at < padded.size(); at += kBlock) {
        Sha1Block(digest, WordsOf<80>(padded, at, ByteOrder::Big));
    }
    return BytesOf(digest, ByteOrder::Big);
}

std::string Sha256(std::string text) {
    const std::string padded = Padded(std::move(text), ByteOrder::Big);
    std::array<std::uint32_t, 8> digest = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                           0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    for (std::size_t at = 0; at < padded.size(); at += kBlock) {
        Sha256Block(digest, WordsOf<64>(padded, at, ByteOrder::Big));
    }
    return BytesOf(digest, ByteOrder::Big);
}

std::string HexOf(std::string_view bytes) {
    std::string hex;
    for (const char byte : bytes) {
        hex += "0123456789abcdef"[static_cast<unsigned char>(byte) >> 4];
        hex += "0123456789abcdef"[static_cast<unsigned char>(byte) & 0xF];
    }
    return hex;
}

} // namespace devsql
