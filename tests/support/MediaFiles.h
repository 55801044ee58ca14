#pragma once

#include <QByteArray>
#include <QImage>
#include <QStringList>
#include <functional>

namespace framora {

/// What an encoder of HEIF pictures is told beside the picture.
struct HeifOptions {
    bool isAv1 = false;
    int bits = 8;
    bool hasAlpha = false;
    int orientation = 1; ///< as EXIF counts; written as irot and imir
    int primaries = 1;   ///< H.273
    int transfer = 13;
    int matrix = 6;
    bool isFullRange = true;
    QByteArray profile = {}; ///< ICC
    QImage thumbnail = {};   ///< What the file shows of itself; larger than `thumbnailSide`.
    int thumbnailSide = 0;   ///< Its longer side in the file.
};

/// A HEIF file made by a real encoder, nearly lossless, chroma not subsampled. Empty when it cannot be made.
QByteArray heifFile(const QImage& image, const HeifOptions& options = {});

/// Makes a clip with the ffmpeg command at `path`, whose extension says the container. `frame` gives the
/// pictures from 0 to count - 1, all of one size; `options` go before the output. Returns ffmpeg's complaint.
QString makeClip(const QString& path, int count, const QString& rate, const std::function<QImage(int)>& frame,
                 const QStringList& options = {});

/// Runs the ffmpeg command; returns its complaint, empty on success.
QString runFfmpeg(const QStringList& arguments, const QByteArray& input = {});

/// Red, green, blue and white from left to right, top to bottom.
QImage fourQuarters(int width, int height);

/// The four corners' colours of `image` as letters in that order, for example "RGBW"; other colours are '?'.
QString cornerColors(const QImage& image);

} // namespace framora
