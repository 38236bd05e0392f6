#include "abstractexporter.h"

AbstractExporter::AbstractExporter(QObject *parent)
    : QObject(parent)
{ }

AbstractExporter::~AbstractExporter() = default;
