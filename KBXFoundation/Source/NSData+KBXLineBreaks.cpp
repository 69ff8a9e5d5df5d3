// NSData(KBX): line breaks made line feeds, the step that every imported message takes.
#include <cstring>

#include "ByteBlock.h"
#include "LineBreaks.h"
#include "NSData+KBX.h"

namespace kbx {

namespace {

bool hasReturn(NSData* data) {
  return data->length() > 0 && std::memchr(data->bytes(), '\r', data->length()) != nullptr;
}

}  // namespace

Ref<NSData> kbxDataByNormalizingLineBreaks(NSData* data) {
  if (!data) return nullptr;
  // Most stored mail has line feeds alone: its bytes are looked through, and not copied.
  if (!hasReturn(data)) return NSData::dataWithData(data);
  ByteBlock block(data->length());
  return block.take(copyWithLineFeeds({data->bytes(), data->length()}, block.bytes()));
}

}  // namespace kbx
