#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/** What a ULog holds, as `info --recording` shows it, and what each key of the recording gets. */
struct UlogSummary
{
    struct Topic
    {
        QString name;
        int multiId = 0;
        qint64 messages = 0;
        /** Messages a second, over the topic's own first to last timestamp; 0 for fewer than two.
         */
        double rate = 0.0;
    };
    struct LoggedMessage
    {
        /** 0 (emergency) to 7 (debug), as the log's level character '0' to '7' says. */
        int level = 0;
        quint64 timestamp = 0;
        QString text;
    };
    struct Key
    {
        QString key;
        /** Where the key's values come from, e.g. "vehicle_attitude.q". */
        QString source;
        /** Messages that give the key a value: finite, and valid where the topic says so. */
        qint64 messages = 0;
        /** Of those: the ones samples take, those no sample takes, and those another took the place
         * of. */
        qint64 used = 0;
        qint64 dropped = 0;
        qint64 collided = 0;
        /** Messages left out because a value of theirs is not finite. */
        qint64 notFinite = 0;
    };

    /** Every subscription, in the log's order. */
    QVector<Topic> topics;
    qint64 dropouts = 0;
    qint64 dropoutMs = 0;
    /** Every logged string, tagged or not, in the log's order. */
    QVector<LoggedMessage> logged;
    /** Each recording key the mapping fills, with where from. */
    QVector<Key> keys;
    /** The parser's damage texts. */
    QStringList damage;
};
