#include "platform/desktop/MessageCatalog.h"

#include <gtest/gtest.h>

#include "tests/support/MessageCatalogs.h"

namespace kbx {
namespace {

TEST(MessageCatalog, AMessageHasItsTranslationInEitherByteOrder) {
  for (const bool isSwapped : {false, true}) {
    const auto catalog = messageCatalog(
        {{"", "Language: fr"}, {"Downloads", "Téléchargements"}, {"Music", ""}}, isSwapped);
    EXPECT_EQ(translationInCatalog(catalog, "Downloads"), "Téléchargements");
    EXPECT_EQ(translationInCatalog(catalog, "Music"), std::nullopt) << "not translated";
    EXPECT_EQ(translationInCatalog(catalog, "Videos"), std::nullopt);
  }
}

TEST(MessageCatalog, EveryCutCatalogIsReadWithinItsBytes) {
  const auto whole = messageCatalog({{"Downloads", "Téléchargements"}});
  for (std::size_t length = 0; length + 1 < whole.size();
       ++length) {                                    // a zero at the end is no loss
    const std::string cut = whole.substr(0, length);  // of its own, so that sanitizers see the end
    EXPECT_EQ(translationInCatalog(cut, "Downloads"), std::nullopt) << length;
  }
}

TEST(MessageCatalog, LyingNumbersFindNothing) {
  const auto whole = messageCatalog({{"Downloads", "Téléchargements"}});
  // The count, both tables, and the length and the place of each text.
  for (const std::size_t offset : {8, 12, 16, 28, 32, 36, 40}) {
    std::string lying = whole;
    lying.replace(offset, 4, "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(translationInCatalog(lying, "Downloads"), std::nullopt) << offset;
  }
}

}  // namespace
}  // namespace kbx
