#pragma once

#include "testsource.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

class AbstractExporter;

/**
 * Runs a whole export through @p exporter into a temporary file: start, one
 * writeSample() per sample (presented by @p source), finish. Returns the
 * file's bytes, or an empty array when the export could not start.
 */
QByteArray exportSamples(AbstractExporter *exporter, TestSource *source,
                         const QVector<TestSample> &samples);

/** The lines of an exported file after its five header lines. */
QStringList linesAfterHeaderBlock(const QByteArray &file);

/** Every setting that switches a data group on or off, in output order (not the orientation). */
QStringList dataGroupKeys();

/** A sample that holds every kind of data, with easily checked values. */
TestSample fullSample();

/** A sample that holds only a packet counter and an acceleration. */
TestSample sparseSample();

/** The properties of the recording the golden exports are made from. */
QVariantMap recordingProperties();

/** The samples of that recording: full, sparse, and counters only. */
QVector<TestSample> recordingSamples();
