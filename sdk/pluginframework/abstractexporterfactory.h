#pragma once

#include "abstractpluginfactory.h"

class AbstractExporter;
class ExportSource;

/**
 * A plug-in factory that makes exporters. The host creates one exporter per
 * export through createExporter() and deletes it when the export is done.
 */
class AbstractExporterFactory : public AbstractPluginFactory
{
public:
    /** A new exporter bound to @p source; the caller owns it. */
    virtual AbstractExporter *createExporter(ExportSource *source) = 0;
    /** Whether the host should offer the factory's exporter. */
    virtual bool exporterFlag() const = 0;
};

#define AbstractExporterFactory_iid "com.korvat.Zentrel.AbstractExporterFactory/1.0"
Q_DECLARE_INTERFACE(AbstractExporterFactory, AbstractExporterFactory_iid)
