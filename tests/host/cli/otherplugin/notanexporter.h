#pragma once

#include <QObject>

// A well-formed Qt plug-in that offers some other interface: what a host
// meets when a user points it at the wrong plug-in file.
class NotAnExporter : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.NotAnExporter/1.0")

public:
    explicit NotAnExporter(QObject *parent = nullptr);
};
