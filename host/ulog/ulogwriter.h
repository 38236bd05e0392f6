#pragma once

#include "blockwriter.h"
#include "ulogbytes.h"

#include <QString>

#include <array>
#include <string>
#include <string_view>

class QIODevice;

/**
 * Writes a PX4 ULog, message by message, as the program's generator and the
 * tests make logs: the header, the flag bits, then definitions and data in
 * the order called. It checks nothing the reader of a log would: a test
 * writes damaged messages with writeMessage() and writeBytes().
 *
 * A log with appended data calls beginAppendedPart() where each part starts;
 * finish() then writes those offsets into the flag bits, which requires a
 * device that can seek.
 */
class UlogWriter
{
public:
    /** Writes to @p out, which must be open for writing and outlive the writer. */
    explicit UlogWriter(QIODevice *out);

    /** The magic, the version and when logging started (µs). */
    bool writeHeader(quint64 startTimestamp, quint8 version = 1);
    /** The flag bits: compatible and incompatible flags and the appended offsets. */
    bool writeFlagBits(const std::array<quint8, 8> &compat = {},
                       const std::array<quint8, 8> &incompat = {},
                       const std::array<quint64, 3> &appendedOffsets = {});
    /** A format definition, "name:type field;type[n] field;...". */
    bool writeFormat(std::string_view definition);
    /** An information message with key "type name" and the value's bytes. */
    bool writeInfo(std::string_view key, std::string_view value);
    /** A text information, key "char[length] name". */
    bool writeInfoText(std::string_view name, std::string_view text);
    bool writeInfoUInt32(std::string_view name, quint32 value);
    /** A part of a multi-information, continuing the one before when @p continued. */
    bool writeMultiInfo(std::string_view key, std::string_view value, bool continued);
    bool writeParameter(std::string_view name, float value);
    bool writeParameter(std::string_view name, qint32 value);
    /** A default parameter of the kinds in @p defaultTypes (bit 0 system, bit 1 airframe). */
    bool writeDefaultParameter(quint8 defaultTypes, std::string_view name, float value);
    bool writeDefaultParameter(quint8 defaultTypes, std::string_view name, qint32 value);
    bool writeSubscription(quint8 multiId, quint16 msgId, std::string_view topic);
    bool writeUnsubscription(quint16 msgId);
    bool writeData(quint16 msgId, std::string_view payload);
    bool writeLogging(quint8 level, quint64 timestamp, std::string_view text);
    bool writeTaggedLogging(quint8 level, quint16 tag, quint64 timestamp, std::string_view text);
    bool writeSync();
    bool writeDropout(quint16 durationMs);
    /** Any message: its header of @p payload's size and @p type, then the payload. */
    bool writeMessage(char type, std::string_view payload);
    /** Bytes as they are, for damage. */
    bool writeBytes(std::string_view bytes);

    /**
     * Starts the next appended part here (at most three); the flag bits then
     * say that data was appended, and where.
     */
    void beginAppendedPart();
    /** Where the next byte goes. */
    qint64 offset() const { return written; }

    /** Writes the rest and the appended offsets. False when writing failed. */
    bool finish();
    QString errorString() const;

private:
    QIODevice *device;
    BlockWriter blocks;
    qint64 written = 0;
    // The flag bits as written, and where their payload lies, for finish().
    std::array<quint8, 8> compatFlags{};
    std::array<quint8, 8> incompatFlags{};
    std::array<quint64, 3> offsets{};
    qint64 flagBitsAt = -1;
    int parts = 0;
    QString error;
};
