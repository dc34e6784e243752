#include "base/sha1.hpp"

#include <cstdio>

namespace korvex {

namespace {

std::uint32_t Rotl(std::uint32_t v, int n) {
    return (v << n) | (v >> (32 - n));
}

}  // namespace

void Sha1::Update(const std::uint8_t* data, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
        block_[fill_++] = data[i];
        if (fill_ == 64) {
            Compress();
            fill_ = 0;
        }
    }
    length_ += size;
}

std::array<std::uint8_t, 20> Sha1::Digest() {
    const std::uint64_t bits = length_ * 8;
    const std::uint8_t one = 0x80, zero = 0;
    Update(&one, 1);
    while (fill_ != 56) Update(&zero, 1);
    for (int i = 7; i >= 0; --i) {
        const auto byte = static_cast<std::uint8_t>(bits >> (8 * i));
        Update(&byte, 1);
    }
    std::array<std::uint8_t, 20> digest{};
    for (std::size_t i = 0; i < 20; ++i)
        digest[i] = static_cast<std::uint8_t>(h_[i / 4] >> (24 - 8 * (i % 4)));
    return digest;
}

std::string Sha1::HexDigest() {
    std::string hex;
    for (const std::uint8_t byte : Digest()) {
        char buf[3];
        std::snprintf(buf, sizeof buf, "%02x", byte);
        hex += buf;
    }
    return hex;
}

void Sha1::Compress() {
    std::uint32_t w[80];
    for (int i = 0; i < 16; ++i)
        w[i] = (std::uint32_t{block_[4 * i]} << 24) | (std::uint32_t{block_[4 * i + 1]} << 16) |
               (std::uint32_t{block_[4 * i + 2]} << 8) | block_[4 * i + 3];
    for (int i = 16; i < 80; ++i) w[i] = Rotl(w[i - 3] ^ w[i - 8] ^ w[i - 14] ^ w[i - 16], 1);
    std::uint32_t a = h_[0], b = h_[1], c = h_[2], d = h_[3], e = h_[4];
    for (int i = 0; i < 80; ++i) {
        std::uint32_t f, k;
        if (i < 20) {
            f = (b & c) | (~b & d);
            k = 0x5A827999;
        } else if (i < 40) {
            f = b ^ c ^ d;
            k = 0x6ED9EBA1;
        } else if (i < 60) {
            f = (b & c) | (b & d) | (c & d);
            k = 0x8F1BBCDC;
        } else {
            f = b ^ c ^ d;
            k = 0xCA62C1D6;
        }
        const std::uint32_t t = Rotl(a, 5) + f + e + k + w[i];
        e = d;
        d = c;
        c = Rotl(b, 30);
        b = a;
        a = t;
    }
    h_[0] += a;
    h_[1] += b;
    h_[2] += c;
    h_[3] += d;
    h_[4] += e;
}

}  // namespace korvex
