#include "platform/desktop/QtTranslation.h"

#include "platform/StringTables.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

namespace framora {

std::unique_ptr<QTranslator> qtTranslation(const QString& table) {
    auto translator = std::make_unique<QTranslator>();
    const bool isThere =
        table != u"en" && translator->load(QLocale(table), QStringLiteral("qtbase"), QStringLiteral("_"),
                                           QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    return isThere ? std::move(translator) : nullptr;
}

void translateQt() {
    static const auto translator = [] {
        auto loaded = qtTranslation(stringTableFor(QLocale::system().uiLanguages()));
        if (loaded)
            QCoreApplication::installTranslator(loaded.get());
        return loaded;
    }();
}

} // namespace framora
