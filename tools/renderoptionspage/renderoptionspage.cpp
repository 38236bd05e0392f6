#include "asciiexporteroptionspage.h"
#include "settingscatalogue.h"

#include <settingssynchronizer.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QPixmap>
#include <QTextStream>
#include <QWindow>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QTextStream err(stderr);
    if (arguments.size() != 2) {
        err << "usage: renderoptionspage <output.png>" << Qt::endl;
        return 2;
    }

    SettingsSynchronizer store(SettingsCatalogue::defaults(), SettingsCatalogue::descriptions());
    AsciiExporterOptionsPage page(&store);
    const QSize designed = page.size();
    page.show();

    // Draw only once the window system shows the page, so that the style
    // and fonts are those of a real screen.
    const QDeadlineTimer deadline(5000);
    while (!(page.windowHandle() && page.windowHandle()->isExposed()) && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    if (!page.windowHandle() || !page.windowHandle()->isExposed()) {
        err << "the page was never shown on screen" << Qt::endl;
        return 1;
    }

    // The form's own size was laid out for a smaller font than the one found
    // here; grow to what the layout asks for, so that nothing is squeezed.
    page.resize(page.size().expandedTo(page.sizeHint()));
    QCoreApplication::processEvents();

    const QString fileName = arguments.at(1);
    if (!page.grab().save(fileName, "PNG")) {
        err << "cannot write " << fileName << Qt::endl;
        return 1;
    }
    QTextStream(stdout) << fileName << ": " << page.width() << " x " << page.height()
                        << " (designed " << designed.width() << " x " << designed.height() << ")"
                        << Qt::endl;
    return 0;
}
