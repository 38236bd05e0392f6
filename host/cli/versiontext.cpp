#include "versiontext.h"

#include "pluginhost.h"

#include <abstractexporterfactory.h>

#include <QDir>

#include <cstdio>

QString programVersion()
{
    return QStringLiteral(ASCIIEXPORT_VERSION);
}

int printVersion(const QString &pluginFile)
{
    std::printf("asciiexport %s\n", qPrintable(programVersion()));
    std::fflush(stdout);
    PluginHost host(pluginFile);
    if (!host.load()) {
        std::fprintf(stderr, "%s\n", host.errorString().toLocal8Bit().constData());
        return 1;
    }
    const AbstractExporterFactory *factory = host.factory();
    std::printf("%s %s (%s)\n", factory->name().toLocal8Bit().constData(),
                factory->version().toLocal8Bit().constData(),
                QDir::toNativeSeparators(host.fileName()).toLocal8Bit().constData());
    return 0;
}
