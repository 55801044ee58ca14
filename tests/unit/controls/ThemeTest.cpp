#include "controls/Controls.h"

#include <QColor>
#include <QQmlComponent>
#include <QQmlEngine>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>

namespace framora {
namespace {

double luminance(const QColor& color) {
    const auto linear = [](double encoded) {
        return encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// As the Web Content Accessibility Guidelines have it: 1 to 21.
double contrast(const QColor& a, const QColor& b) {
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

QColor over(const QColor& upper, const QColor& lower) {
    const auto mix = [t = upper.alphaF()](float a, float b) { return a * t + b * (1 - t); };
    return QColor::fromRgbF(mix(upper.redF(), lower.redF()), mix(upper.greenF(), lower.greenF()),
                            mix(upper.blueF(), lower.blueF()));
}

class ThemeTest : public testing::TestWithParam<bool> {
protected:
    ThemeTest() {
        registerControls(engine);
        QQmlComponent component(&engine);
        component.setData(
            "import QtQuick\nimport Framora.Controls\nQtObject { property QtObject theme: Theme }", {});
        holder.reset(component.create());
        if (!holder)
            throw std::runtime_error(component.errorString().toStdString());
        theme = holder->property("theme").value<QObject*>();
        theme->setProperty("dark", GetParam());
    }
    QColor color(const char* name) {
        const QVariant value = theme->property(name);
        EXPECT_TRUE(value.isValid()) << name;
        return value.value<QColor>();
    }
    void expectSmallTextReadsOn(const char* text, std::initializer_list<const char*> grounds) {
        constexpr double forSmallText = 4.5;
        for (const char* ground : grounds)
            EXPECT_GE(contrast(color(text), over(color(ground), color("card"))), forSmallText)
                << text << " on " << ground;
    }

    QQmlEngine engine;
    std::unique_ptr<QObject> holder;
    QObject* theme = nullptr;
};

TEST_P(ThemeTest, smallTextStandsOutFromWhatItStandsOn) {
    ASSERT_NEAR(contrast(Qt::black, Qt::white), 21, 1e-3);
    expectSmallTextReadsOn("text",
                           {"ground", "surface", "card", "fill", "hoverFill", "pressedFill", "raised"});
    expectSmallTextReadsOn("secondaryText",
                           {"ground", "surface", "card", "fill", "hoverFill", "pressedFill", "accentTint"});
    expectSmallTextReadsOn("tertiaryText", {"ground", "surface", "card", "fill", "accentTint"});
}

INSTANTIATE_TEST_SUITE_P(Light, ThemeTest, testing::Values(false));
INSTANTIATE_TEST_SUITE_P(Dark, ThemeTest, testing::Values(true));

} // namespace
} // namespace framora
