#include "library/text/Localized.h"

#include <QCoreApplication>
#include <QLocale>
#include <QString>
#include <QTranslator>

std::string localized(const char* key) {
    return QCoreApplication::translate("Quillo", key).toStdString();
}

bool installTranslations(const std::string& translationsDir) {
    if (!QCoreApplication::instance()) return false;
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(QLocale(), "quillo", "_", QString::fromStdString(translationsDir))) {
        QCoreApplication::installTranslator(translator);
        return true;
    }
    delete translator;
    return false;
}
