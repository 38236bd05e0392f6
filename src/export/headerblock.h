#pragma once

#include <QCoreApplication>

class ExportSource;
class QTextStream;

/**
 * The block of "//" comment lines an export opens with: start time, update
 * rate, filter profile, option flags and firmware version of the recording.
 * Its texts are the exporter's and are translated in its context.
 */
class HeaderBlock
{
    Q_DECLARE_TR_FUNCTIONS(AsciiExporter)

public:
    /**
     * Writes the block. Its last line has no line end of its own: the
     * exporter ends it.
     */
    static void write(QTextStream &out, const ExportSource &source);
};
