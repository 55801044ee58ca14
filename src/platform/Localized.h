#pragma once

#include <QString>

namespace framora {

/// The text of a localisation key in the program's string table; the key itself when the table has none.
QString localized(const QString& key);

} // namespace framora
