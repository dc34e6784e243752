#pragma once
// JSON form of values and bags (internal to the library and its tools; not installed).
//
//   Empty      null                 Boolean  true / false        Long    123 (colours too)
//   Double     1.5 (always a point or exponent)                  String  "text"
//   Integer    {"Integer": 5}       Single   {"Single": 1.5}     Missing {"Missing": true}
//   Font       {"Font": {"Name": "Arial", "Size": 8.25, "Bold": false, ...}}
//   Picture    {"Picture": {"Type": 1, "Width": 16, "Height": 16, "Pixels": "<base64>"}}
//   Nothing    {"Object": null}
//
// Pixels are the picture's 0xAARRGGBB words, little-endian, in base64. A whole number above
// 2147483647 and up to 4294967295 reads as the Long with the same bits, so a colour may be
// written as 2147483663 for 0x8000000F.

#include <nlohmann/json.hpp>

#include "host/property_bag.hpp"
#include "host/variant.hpp"

namespace korvex::host::json {

using Json = nlohmann::ordered_json;

Json Encode(const Variant& value);
Variant Decode(const Json& json);

Json EncodeBag(const JsonPropertyBag& bag);
JsonPropertyBag DecodeBag(const Json& json);

}  // namespace korvex::host::json
