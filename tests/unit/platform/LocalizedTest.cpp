#include "platform/Localized.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(Localized, givesTheTextOfAKeyAndTheKeyItselfWhereThereIsNone) {
    EXPECT_EQ(localized(QStringLiteral("quit")), QStringLiteral("Quit Framora"));
    EXPECT_EQ(localized(QStringLiteral("no such key")), QStringLiteral("no such key"));
}

} // namespace
} // namespace framora
