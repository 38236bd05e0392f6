#include "translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace {

// Installs the first of @p folders that holds a translation named @p name
// for the user's language; the translator lives as long as the application.
void installTranslation(const QString &name, const QStringList &folders)
{
    for (const QString &folder : folders) {
        auto *translator = new QTranslator(QCoreApplication::instance());
        if (translator->load(QLocale(), name, QStringLiteral("_"), folder)) {
            QCoreApplication::installTranslator(translator);
            return;
        }
        delete translator;
    }
}

} // namespace

void installTranslations()
{
    const QDir programDir(QCoreApplication::applicationDirPath());
    const QStringList folders{programDir.filePath(QStringLiteral(INSTALLED_TRANSLATIONS_DIR)),
                              programDir.filePath(QStringLiteral(BUILD_TRANSLATIONS_DIR))};
    installTranslation(QStringLiteral("asciiexport"), folders);
    installTranslation(QStringLiteral("asciiexporter"), folders);
    // Qt's texts, such as those of the command-line parser, where the system has them.
    installTranslation(QStringLiteral("qtbase"),
                       {QLibraryInfo::location(QLibraryInfo::TranslationsPath)});
}
