#pragma once

#include "abstractplugin.h"
#include "pluginframework_global.h"

#include <QObject>
#include <QString>

class QFileDevice;

/**
 * One export of one recording into one file.
 *
 * The host drives an exporter in this order: start() once with the output
 * file (not yet open), writeSample() once per sample after positioning the
 * export source on it, finish() once, then deletes the exporter. Closing the
 * file is the host's business.
 */
class PLUGINFRAMEWORK_EXPORT AbstractExporter : public QObject, public AbstractPlugin
{
    Q_OBJECT

public:
    explicit AbstractExporter(QObject *parent = nullptr);
    ~AbstractExporter() override;

    /** Opens @p device and writes what precedes the samples; false when it fails. */
    virtual bool start(QFileDevice *device) = 0;
    /** Writes the sample the export source currently presents. */
    virtual bool writeSample() = 0;
    /** Ends the export, handing all buffered text to the device. */
    virtual bool finish() = 0;
    /** Display name of the exporter. */
    virtual QString name() const = 0;
};
