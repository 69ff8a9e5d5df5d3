// NSData(KBX): line breaks made line feeds, the step that every imported message takes.
#include <cstring>
#include <span>
#include <string_view>

#include "LineBreaks.h"
#include "NSData+KBX.h"
#include "platform/objects/DataBlock.h"

namespace kbx {

Ref<NSData> kbxDataByNormalizingLineBreaks(NSData* data) {
  if (!data) return nullptr;
  // Most stored mail has line feeds alone: its bytes are looked through, and not copied.
  const std::size_t prefix = data->view().find('\r');
  if (prefix == std::string_view::npos) return NSData::dataWithData(data);
  DataBlock block(data->length());
  std::memcpy(block.bytes(), data->bytes(), prefix);
  const std::span<const std::uint8_t> rest(data->bytes() + prefix, data->length() - prefix);
  return block.take(prefix + copyWithLineFeeds(rest, block.bytes() + prefix));
}

}  // namespace kbx
