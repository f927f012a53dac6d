// Bytes as a property list: what is read can be written and read again.

#include "platform/linux/property_list_codec.h"
#include "tests/fuzz/require.h"

using namespace platform::linux_;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto value = decodePropertyList({reinterpret_cast<const char*>(data), size});
  if (!value) return 0;
  for (const auto format : {PropertyListFormat::xml, PropertyListFormat::binary}) {
    const auto bytes = encodePropertyList(*value, format);
    require(bytes.has_value());
    // Either form may refuse text that only the other can carry; none may crash.
    if (const auto again = decodePropertyList(*bytes)) require(again->index() == value->index());
  }
  return 0;
}
