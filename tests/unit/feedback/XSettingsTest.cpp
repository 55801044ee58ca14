#include "platform/x11/X11ThemeName.h"

#include <QtEndian>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// An _XSETTINGS_SETTINGS value, written by the rules of the XSETTINGS standard.
class SettingsWriter {
public:
    explicit SettingsWriter(bool bigEndian) : m_bigEndian(bigEndian) {}

    void addInteger(const QByteArray& name) {
        head(0, name);
        number<quint32>(7);
    }
    void addColor(const QByteArray& name) {
        head(2, name);
        number<quint64>(0);
    }
    void addString(const QByteArray& name, const QByteArray& value) {
        head(1, name);
        number<quint32>(quint32(value.size()));
        padded(value);
    }
    QByteArray property() {
        const QByteArray entries = std::exchange(m_bytes, {});
        m_bytes.append(char(m_bigEndian ? 1 : 0)).append("\0\0\0", 3);
        number<quint32>(42);
        number<quint32>(m_count);
        return m_bytes + entries;
    }

private:
    template <typename T> void number(T value) {
        const T stored = m_bigEndian ? qToBigEndian(value) : qToLittleEndian(value);
        m_bytes.append(reinterpret_cast<const char*>(&stored), sizeof(T));
    }
    void padded(const QByteArray& text) { m_bytes.append(text).append((4 - text.size() % 4) % 4, '\0'); }
    void head(char type, const QByteArray& name) {
        ++m_count;
        m_bytes.append(type).append('\0');
        number<quint16>(quint16(name.size()));
        padded(name);
        number<quint32>(1);
    }

    bool m_bigEndian;
    quint32 m_count = 0;
    QByteArray m_bytes;
};

QByteArray example(bool bigEndian) {
    SettingsWriter writer(bigEndian);
    writer.addInteger("Xft/DPI");
    writer.addColor("Some/Color");
    writer.addString("Gtk/FontName", "Sans 10");
    writer.addString("Net/ThemeName", "Greybird-dark");
    writer.addInteger("Net/DoubleClickTime");
    return writer.property();
}

TEST(XSettings, theThemesNameIsFoundInEitherByteOrder) {
    EXPECT_EQ(textInXSettings(example(false), "Net/ThemeName"), QStringLiteral("Greybird-dark"));
    EXPECT_EQ(textInXSettings(example(true), "Net/ThemeName"), QStringLiteral("Greybird-dark"));
}

TEST(XSettings, withoutTheNameThereIsNone) {
    SettingsWriter writer(false);
    writer.addString("Gtk/FontName", "Sans 10");
    EXPECT_EQ(textInXSettings(writer.property(), "Net/ThemeName"), QString());
    EXPECT_EQ(textInXSettings({}, "Net/ThemeName"), QString());
}

TEST(XSettings, damageIsNeverReadPastItsEnd) {
    const QByteArray whole = example(false);
    for (qsizetype length = 0; length < whole.size(); ++length) {
        const QString name = textInXSettings(whole.left(length), "Net/ThemeName");
        EXPECT_TRUE(name.isEmpty() || name == QStringLiteral("Greybird-dark")) << length;
    }
    for (qsizetype i = 0; i < whole.size(); ++i) {
        QByteArray damaged = whole;
        damaged[i] = char(0xff);
        textInXSettings(damaged, "Net/ThemeName"); // Must return; the sanitizers watch what it reads.
    }
}

} // namespace
} // namespace framora
