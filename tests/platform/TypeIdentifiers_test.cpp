#include "platform/resources/TypeIdentifiers.h"

#include <gtest/gtest.h>

#include "tests/support/FakeMimeTypes.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(TypeIdentifiers, KnownEndingsGoBeforeTheSharedDatabase) {
  FakeMimeTypes types{{{"a.eml", "image/png"}, {"a.odd", "image/png"}}};
  struct Case {
    const char *name, *identifier;
  };
  for (auto [name, identifier] : {Case{"a.eml", "com.apple.mail.email"},
                                  {"A.EMLX", "com.apple.mail.emlx"},
                                  {"1.partial.emlx", "com.apple.mail.emlx.part"},
                                  {".emlx", "public.data"},
                                  {"a.tar.gz", "org.gnu.gnu-zip-tar-archive"},
                                  {"a.gz", "org.gnu.gnu-zip-archive"},
                                  {"a.odd", "public.png"},
                                  {"a.unknown", "public.data"},
                                  {"", "public.data"}})
    EXPECT_EQ(text(typeIdentifier(name, false)), identifier) << name;
  EXPECT_EQ(text(typeIdentifier("a.eml", true)), "public.folder");
}

TEST(TypeIdentifiers, AMIMETypeHasItsOwnIdentifierOrThatOfItsKind) {
  struct Case {
    const char *type, *identifier;
  };
  for (auto [type, identifier] : {Case{"image/png", "public.png"},
                                  {"image/x-odd", "public.image"},
                                  {"text/html", "public.html"},
                                  {"text/x-odd", "public.text"},
                                  {"audio/x-odd", "public.audio"},
                                  {"video/x-odd", "public.movie"},
                                  {"message/rfc822", "com.apple.mail.email"},
                                  {"application/x-odd", "public.data"},
                                  {"image", "public.data"},
                                  {"", "public.data"}})
    EXPECT_EQ(text(typeIdentifierOfMIMEType(type)), identifier) << type;
}

}  // namespace
}  // namespace kbx
