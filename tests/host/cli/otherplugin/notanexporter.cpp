#include "notanexporter.h"

NotAnExporter::NotAnExporter(QObject *parent)
    : QObject(parent)
{ }
