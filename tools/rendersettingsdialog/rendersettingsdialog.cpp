#include "asciiexporteroptionspage.h"
#include "settingscatalogue.h"
#include "settingsdialog.h"

#include <settingssynchronizer.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QPixmap>
#include <QScreen>
#include <QTextStream>
#include <QWindow>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QTextStream err(stderr);
    if (arguments.size() != 2) {
        err << "usage: rendersettingsdialog <output.png>" << Qt::endl;
        return 2;
    }

    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    SettingsDialog dialog({new AsciiExporterOptionsPage(&store)}, {});
    dialog.show();

    // Draw only once the window system shows the dialog, so that the style
    // and fonts are those of a real screen.
    const QDeadlineTimer deadline(5000);
    while (!(dialog.windowHandle() && dialog.windowHandle()->isExposed()) && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    if (!dialog.windowHandle() || !dialog.windowHandle()->isExposed()) {
        err << "the dialog was never shown on screen" << Qt::endl;
        return 1;
    }
    QCoreApplication::processEvents();

    const QString fileName = arguments.at(1);
    if (!dialog.grab().save(fileName, "PNG")) {
        err << "cannot write " << fileName << Qt::endl;
        return 1;
    }
    const QRect screen = dialog.screen()->availableGeometry();
    QTextStream(stdout) << fileName << ": " << dialog.width() << " x " << dialog.height()
                        << " (screen " << screen.width() << " x " << screen.height() << ")"
                        << Qt::endl;
    return 0;
}
