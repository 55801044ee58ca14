#pragma once

#include <QByteArray>
#include <QImage>

namespace framora::comparison {

/// Whether libdeflate was there at build time.
bool hasUpFilterPng();

/// An RGB32 picture as a PNG of three channels: every row filtered with "up", deflated by libdeflate at level
/// 4 in one piece on this thread. Empty without libdeflate.
QByteArray encodeUpFilterPng(const QImage& picture);

} // namespace framora::comparison
