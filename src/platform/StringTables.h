#pragma once

#include <QString>
#include <QStringList>

namespace framora {

/// The languages that the program speaks, by the names of their tables: "en", "pt-BR", "zh-Hans" and so on.
QStringList stringTableNames();

/// The table for a user who understands these languages, the best first, named as QLocale::uiLanguages()
/// does. English where none of them is spoken.
QString stringTableFor(const QStringList& uiLanguages);

} // namespace framora
