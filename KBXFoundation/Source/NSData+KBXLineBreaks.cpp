// NSData(KBX): line breaks made line feeds, the step that every imported message takes.
#include "ByteBlock.h"
#include "LineBreaks.h"
#include "NSData+KBX.h"

namespace kbx {

Ref<NSData> kbxDataByNormalizingLineBreaks(NSData* data) {
  if (!data) return nullptr;
  ByteBlock block(data->length());
  return block.take(copyWithLineFeeds({data->bytes(), data->length()}, block.bytes()));
}

}  // namespace kbx
