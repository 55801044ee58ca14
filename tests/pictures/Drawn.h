#pragma once

#include "platform/Localized.h"

#include <QColor>
#include <QDir>
#include <QImage>
#include <QQuickItem>
#include <QQuickView>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

namespace framora {

/// What every picture of a window must hold, and where it is kept.
namespace drawn {

/// pictures/<window>[/<language>]/x<scale> of the build folder. Language and scale factor are the process's.
inline QDir folder(const QString& window) {
    QString path = QStringLiteral(FRAMORA_PICTURES "/") + window;
    const QString language = qEnvironmentVariable("LANGUAGE");
    if (!language.isEmpty())
        path += u'/' + language;
    EXPECT_EQ(localized(QStringLiteral("undo")) == QLatin1String("Undo"), language.isEmpty());
    path += QStringLiteral("/x") + qEnvironmentVariable("QT_SCALE_FACTOR", QStringLiteral("1"));
    EXPECT_TRUE(QDir().mkpath(path)) << path.toStdString();
    return QDir(path);
}

/// The topmost item's coordinates of what an item shows: less than its bounds where a parent clips it.
inline QRectF shownArea(const QQuickItem& item, const QRectF& bounds) {
    QRectF area = item.mapRectToScene(bounds);
    for (const QQuickItem* above = item.parentItem(); above; above = above->parentItem())
        if (above->clip())
            area &= above->mapRectToScene(above->boundingRect());
    return area;
}

/// The ink's area of a text item, in its own coordinates.
inline QRectF textArea(const QQuickItem& item) {
    const double width = item.property("contentWidth").toDouble();
    const double height = item.property("contentHeight").toDouble();
    const int alignment = item.property("horizontalAlignment").toInt();
    const double left = alignment & Qt::AlignHCenter ? (item.width() - width) / 2
                        : alignment & Qt::AlignRight ? item.width() - width
                                                     : 0;
    return {left, 0, width, height};
}

/// Why a text cannot be read whole; empty when it can.
inline QString cutOff(const QQuickItem& item) {
    const QString text = item.property("text").toString();
    const QRectF ink = textArea(item);
    if (item.property("truncated").toBool() || ink.width() > item.width() + 0.5)
        return QStringLiteral("\"%1\" wants %2 of %3 points")
            .arg(text)
            .arg(item.implicitWidth())
            .arg(item.width());
    // Chinese and Japanese end a line behind any character.
    static const QRegularExpression word(QStringLiteral("[\\x{2e80}-\\x{ffff}]|[^\\s\\x{2e80}-\\x{ffff}]+"));
    const auto words = text.count(word);
    if (item.property("lineCount").toInt() > words)
        return QStringLiteral("\"%1\" breaks within a word").arg(text);
    // A label without a width of its own can stick out of what it stands on.
    for (const QQuickItem* above = item.parentItem(); above; above = above->parentItem()) {
        const QRectF inside = above->mapRectFromItem(&item, ink);
        const bool isGround = above->inherits("QQuickAbstractButton") || above->inherits("QQuickPopupItem");
        const bool isWide = isGround || above->clip() || !above->parentItem();
        if ((isWide && (inside.left() < -0.5 || inside.right() > above->width() + 0.5)) ||
            (isGround && (inside.top() < -0.5 || inside.bottom() > above->height() + 0.5)))
            return QStringLiteral("\"%1\" sticks out of %2 x %3 points")
                .arg(text)
                .arg(above->width())
                .arg(above->height());
    }
    return {};
}

struct Text {
    const QQuickItem* item;
    const QQuickItem* layer; ///< The window's content, or what lies over it and may cover it.
};

inline void collectTexts(const QQuickItem& parent, const QQuickItem& layer, std::vector<Text>& texts) {
    for (const QQuickItem* child : parent.childItems()) {
        if (!child->isVisible() || child->opacity() == 0)
            continue;
        if (child->inherits("QQuickText") && !child->property("text").toString().isEmpty())
            texts.push_back({child, &layer});
        collectTexts(*child, child->inherits("QQuickPopupItem") ? *child : layer, texts);
    }
}

/// The texts that cannot be read whole, and those that lie on each other.
inline QStringList unreadable(const QQuickItem& root) {
    std::vector<Text> texts;
    collectTexts(root, root, texts);
    const auto words = [](const Text& text) { return text.item->property("text").toString(); };
    QStringList found;
    for (auto one = texts.begin(); one != texts.end(); ++one) {
        if (const QString why = cutOff(*one->item); !why.isEmpty())
            found << why;
        for (auto other = texts.begin(); other != one; ++other) {
            const QRectF both =
                shownArea(*one->item, textArea(*one->item)) & shownArea(*other->item, textArea(*other->item));
            if (one->layer == other->layer && both.width() > 1 && both.height() > 4)
                found << QStringLiteral("\"%1\" lies on \"%2\"").arg(words(*one), words(*other));
        }
    }
    return found;
}

/// Keeps what the window shows as `name`-light or -dark, and holds that it is a whole window of that look.
inline void save(QQuickView& window, const QDir& folder, const QString& name, const QSize& size, bool dark) {
    const QImage image = window.grabWindow();
    EXPECT_EQ(image.size(), (QSizeF(size) * window.effectiveDevicePixelRatio()).toSize())
        << name.toStdString();
    const QStringList faults = unreadable(*window.contentItem());
    EXPECT_TRUE(faults.isEmpty()) << name.toStdString() << ": " << faults.join(u'\n').toStdString();
    const QString path =
        folder.filePath(name + (dark ? QStringLiteral("-dark.png") : QStringLiteral("-light.png")));
    ASSERT_TRUE(image.save(path)) << path.toStdString();
    // A window that was drawn has its two grounds, its texts and its picture.
    QSet<QRgb> colors;
    for (int y = 0; y < image.height(); y += 7)
        for (int x = 0; x < image.width(); x += 7)
            colors.insert(image.pixel(x, y));
    EXPECT_GT(colors.size(), 12) << name.toStdString();
    EXPECT_EQ(image.pixelColor(image.width() / 50, image.height() - image.height() / 50).lightness() < 128,
              dark)
        << name.toStdString();
}

/// While it lives, what the views' engine complains about; a test with a complaint fails.
class Complaints {
public:
    Complaints() {
        all().clear();
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
            if (message.startsWith(u"qrc:"))
                all().append(message);
        });
    }
    ~Complaints() {
        qInstallMessageHandler(nullptr);
        EXPECT_TRUE(all().isEmpty()) << all().join(u'\n').toStdString();
    }
    Complaints(const Complaints&) = delete;
    Complaints& operator=(const Complaints&) = delete;

private:
    static QStringList& all() {
        static QStringList messages;
        return messages;
    }
};

inline QQuickItem* find(QQuickItem* parent, const QString& name) {
    for (QQuickItem* child : parent->childItems()) {
        if (!child->isVisible())
            continue;
        if (child->objectName() == name)
            return child;
        if (QQuickItem* found = find(child, name))
            return found;
    }
    return nullptr;
}

} // namespace drawn
} // namespace framora
