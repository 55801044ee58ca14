#pragma once

#include <QString>

namespace framora {

/// The text of a localisation key in the table of the user's language, chosen once from the locale; the key
/// itself when the table has none.
QString localized(const QString& key);

} // namespace framora
