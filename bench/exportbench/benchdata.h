#pragma once

#include <testsource.h>

#include <QMap>
#include <QString>
#include <QVariant>
#include <QVector>

/** One of the settings the benchmark measures exports with. */
struct BenchConfig
{
    QString name;
    QMap<QString, QVariant> settings;
    int gpsChannels = 0;
    int gnssSatellites = 0;
};

/** "default", "inertial" and "full". */
QVector<BenchConfig> benchConfigs();

/** @p count samples of plausible, seeded values for @p config. */
QVector<TestSample> makeSamplePool(const BenchConfig &config, int count, quint64 seed);

/** One field of a row, as the exporter formats it. */
struct Field
{
    enum Kind { Fixed, General, Signed, Unsigned, Empty };

    Kind kind = Empty;
    double real = 0.0;
    qint64 integer = 0;
    int precision = 0; ///< decimals or significant digits
    int width = 0;
    char fill = ' ';
};

/**
 * The fields the exporter writes for @p sample under @p settings (tab
 * delimiter, empty fields left empty): the same values in the same order,
 * for writers that format them by other means.
 */
QVector<Field> flatten(const TestSample &sample, const QMap<QString, QVariant> &settings);
