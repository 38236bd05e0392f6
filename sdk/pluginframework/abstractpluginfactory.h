#pragma once

#include <QList>
#include <QObject>
#include <QString>

class AbstractOptionsPage;
class SettingsSynchronizer;

/**
 * The root object of a plug-in, as the host sees it. The host finds it through
 * Qt's plug-in loader and recognises it by a cast to this interface.
 *
 * The order of the virtual operations is part of the binary interface that
 * plug-ins are built against; do not reorder them.
 */
class AbstractPluginFactory
{
public:
    virtual ~AbstractPluginFactory() = default;

    /** Display name of the plug-in. */
    virtual QString name() const = 0;
    /** Extension (without a leading point) of the files the plug-in writes. */
    virtual QString fileExtension() const = 0;
    /** Whether the host should list the plug-in. */
    virtual bool pluginFlag() const = 0;
    /** Version text of the plug-in. */
    virtual QString version() const = 0;
    /** The plug-in's settings store; owned by the factory. */
    virtual SettingsSynchronizer *settings() const = 0;
    /** New options pages for the host's settings dialog; the caller owns them. */
    virtual QList<AbstractOptionsPage *> optionsPages() = 0;
    /** Whether the plug-in can work on this system. */
    virtual bool isAvailable() const = 0;
};

#define AbstractPluginFactory_iid "com.korvat.Zentrel.AbstractPluginFactory/1.0"
Q_DECLARE_INTERFACE(AbstractPluginFactory, AbstractPluginFactory_iid)
