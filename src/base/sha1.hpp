#pragma once
// SHA-1 (FIPS 180-4): name-based GUIDs of the type library and, in the tests, digests of whole
// frame buffers compared with published ones. Not for anything that needs a secure hash.

#include <array>
#include <cstdint>
#include <string>

namespace korvex {

class Sha1 {
  public:
    void Update(const std::uint8_t* data, std::size_t size);
    // The digest of everything updated so far; the object is spent afterwards.
    std::array<std::uint8_t, 20> Digest();
    std::string HexDigest();

  private:
    void Compress();

    std::array<std::uint32_t, 5> h_{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    std::array<std::uint8_t, 64> block_{};
    std::size_t fill_ = 0;
    std::uint64_t length_ = 0;
};

}  // namespace korvex
