#include "platform/desktop/pictures/TimedPictures.h"

#include "platform/desktop/pictures/SettingsFile.h"

#include <QXmlStreamReader>
#include <cmath>
#include <vector>

namespace framora {
namespace {

struct Slide {
    double seconds = 0;
    QString file;
};

/// <year>2024</year><month>...: any that is missing counts as its first.
QDateTime startTime(QXmlStreamReader& xml) {
    int year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0;
    while (xml.readNextStartElement()) {
        int* const field = xml.name() == u"year"     ? &year
                           : xml.name() == u"month"  ? &month
                           : xml.name() == u"day"    ? &day
                           : xml.name() == u"hour"   ? &hour
                           : xml.name() == u"minute" ? &minute
                           : xml.name() == u"second" ? &second
                                                     : nullptr;
        const int value = xml.readElementText(QXmlStreamReader::SkipChildElements).trimmed().toInt();
        if (field)
            *field = value;
    }
    return {QDate(year, month, day), QTime(hour, minute, second)};
}

/// A file as a text, or one for each size of a screen: the last is the largest by custom.
QString slideFile(QXmlStreamReader& xml) {
    QString text;
    QString sized;
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::EndElement)
            break;
        if (token == QXmlStreamReader::Characters)
            text += xml.text();
        else if (token == QXmlStreamReader::StartElement)
            sized = xml.readElementText(QXmlStreamReader::SkipChildElements).trimmed();
    }
    return sized.isEmpty() ? text.trimmed() : sized;
}

Slide readSlide(QXmlStreamReader& xml) {
    Slide slide;
    while (xml.readNextStartElement()) {
        if (xml.name() == u"duration")
            slide.seconds = xml.readElementText(QXmlStreamReader::SkipChildElements).trimmed().toDouble();
        else if (xml.name() == u"file" || xml.name() == u"from")
            slide.file = slideFile(xml);
        else
            xml.skipCurrentElement();
    }
    return slide;
}

} // namespace

QUrl timedPicture(const QString& path, const QDateTime& now) {
    QXmlStreamReader xml(readSettingsFile(path));
    QDateTime start;
    std::vector<Slide> slides;
    double cycle = 0;
    if (!xml.readNextStartElement())
        return {};
    while (xml.readNextStartElement()) {
        if (xml.name() == u"starttime") {
            start = startTime(xml);
        } else if (xml.name() == u"static" || xml.name() == u"transition") {
            const Slide slide = readSlide(xml);
            if (slide.file.isEmpty() || !(slide.seconds >= 0 && std::isfinite(slide.seconds)))
                continue;
            slides.push_back(slide);
            cycle += slide.seconds;
        } else {
            xml.skipCurrentElement();
        }
    }
    if (slides.empty())
        return {};
    double left = start.isValid() && cycle > 0 ? std::fmod(double(start.secsTo(now)), cycle) : 0;
    if (left < 0)
        left += cycle;
    for (const Slide& slide : slides) {
        if (left < slide.seconds)
            return QUrl::fromLocalFile(slide.file);
        left -= slide.seconds;
    }
    return QUrl::fromLocalFile(slides.front().file);
}

} // namespace framora
