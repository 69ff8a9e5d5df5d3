#include "NSString+KBXPunctuation.h"

#include "NSString+KBXCreation.h"
#include "platform/text/StringBuilder.h"

namespace kbx {

Ref<NSString> kbxEllipsis() { return kbxStringWithCharacter(0x2026); }
Ref<NSString> kbxEnDash() { return kbxStringWithCharacter(0x2013); }
Ref<NSString> kbxEmDash() { return kbxStringWithCharacter(0x2014); }
Ref<NSString> kbxLeftDoubleQuote() { return kbxStringWithCharacter(0x201C); }
Ref<NSString> kbxRightDoubleQuote() { return kbxStringWithCharacter(0x201D); }
Ref<NSString> kbxLeftSingleQuote() { return kbxStringWithCharacter(0x2018); }
Ref<NSString> kbxRightSingleQuote() { return kbxStringWithCharacter(0x2019); }
Ref<NSString> kbxLeftDoubleGuillemet() { return kbxStringWithCharacter(0x00AB); }
Ref<NSString> kbxRightDoubleGuillemet() { return kbxStringWithCharacter(0x00BB); }
Ref<NSString> kbxLeftSingleGuillemet() { return kbxStringWithCharacter(0x2039); }
Ref<NSString> kbxRightSingleGuillemet() { return kbxStringWithCharacter(0x203A); }

Ref<NSString> kbxDoubleQuotedString(NSString* string) {
  if (!string) return nullptr;
  return StringBuilder()
      .append(kbxLeftDoubleQuote())
      .append(string)
      .append(kbxRightDoubleQuote())
      .take();
}

}  // namespace kbx
