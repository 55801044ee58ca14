#pragma once

#include <QByteArray>
#include <QImage>
#include <cstdint>

namespace framora {

/// The general pasteboard: what Copy and Paste use everywhere.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;
    /// Grows by at least one with every change of owner, this program's own included; it is right even when
    /// the main thread was busy or waiting meanwhile.
    virtual std::int64_t changeCount() = 0;
    /// The picture on offer, with its pixel ratio (QImage::devicePixelRatio) taken from its stored
    /// resolution; a null image when there is none or its owner does not answer.
    virtual QImage readImage() = 0;
    /// Offers an encoded PNG file as "image/png" until another owner takes over.
    virtual void writePng(const QByteArray& png) = 0;
    /// Takes a picture, an encoded PNG file, that the capture tool could not put here itself: it counts as a
    /// change, readImage() gives it, and it is offered as soon as the desktop lets this program offer
    /// anything.
    virtual void adoptPicture(const QByteArray& png) = 0;
};

} // namespace framora
