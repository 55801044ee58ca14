#pragma once

#include <QString>
#include <QStringList>

namespace framora {

/// Where each image's picture goes in `folder`: the image's name with .png instead of its extension,
/// "stdin.png" for standard input. Two images of one name are an error, told in one line, and so is an image
/// that lies where a picture goes: run twice, the command would dress its own pictures.
struct OutputNames {
    QStringList paths;
    QString error;
};
OutputNames outputNames(const QStringList& images, const QString& folder);

} // namespace framora
