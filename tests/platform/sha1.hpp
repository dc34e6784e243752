#pragma once
// A compact SHA-1 (FIPS 180-4), enough to compare whole frame buffers with published digests.

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace korvex::testing {

class Sha1 {
  public:
    void Update(const std::uint8_t* data, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) {
            block_[fill_++] = data[i];
            if (fill_ == 64) {
                Compress();
                fill_ = 0;
            }
        }
        length_ += size;
    }

    std::string HexDigest() {
        const std::uint64_t bits = length_ * 8;
        const std::uint8_t one = 0x80, zero = 0;
        Update(&one, 1);
        while (fill_ != 56) Update(&zero, 1);
        for (int i = 7; i >= 0; --i) {
            const auto byte = static_cast<std::uint8_t>(bits >> (8 * i));
            Update(&byte, 1);
        }
        std::string hex;
        for (std::uint32_t word : h_) {
            char buf[9];
            std::snprintf(buf, sizeof buf, "%08x", word);
            hex += buf;
        }
        return hex;
    }

  private:
    static std::uint32_t Rotl(std::uint32_t v, int n) { return (v << n) | (v >> (32 - n)); }

    void Compress() {
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

    std::array<std::uint32_t, 5> h_{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    std::array<std::uint8_t, 64> block_{};
    std::size_t fill_ = 0;
    std::uint64_t length_ = 0;
};

}  // namespace korvex::testing
