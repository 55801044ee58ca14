#pragma once

#include <QString>
#include <QTranslator>
#include <memory>

namespace framora {

/// Qt's own texts, those of its dialogs and their buttons, in the language of one of the string tables. Null
/// for English, and where Qt's translations are not installed.
std::unique_ptr<QTranslator> qtTranslation(const QString& table);

/// Has Qt speak the program's language from now on. The first call reads a file: it belongs before the first
/// of Qt's dialogs and not into the start.
void translateQt();

} // namespace framora
