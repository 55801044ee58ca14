#include "render-cli/OutputNames.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(OutputNames, TheExtensionBecomesPng) {
    const OutputNames names =
        outputNames({"a.jpg", "/x/b.tar.webp", "c", "-", ".hidden"}, QStringLiteral("out"));
    EXPECT_EQ(names.error, QString());
    EXPECT_EQ(names.paths,
              QStringList({"out/a.png", "out/b.tar.png", "out/c.png", "out/stdin.png", "out/.hidden.png"}));
}

TEST(OutputNames, TwoImagesOfOneNameAreRefused) {
    const OutputNames names = outputNames({"a/x.png", "b/x.jpg"}, QStringLiteral("out"));
    EXPECT_TRUE(names.error.contains(u"'a/x.png' and 'b/x.jpg'")) << names.error.toStdString();
}

} // namespace
} // namespace framora
