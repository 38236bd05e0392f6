#pragma once

#include "ulogformats.h"
#include "ulogkeyvalue.h"

#include <QString>

#include <array>
#include <string>
#include <string_view>
#include <vector>

class QIODevice;

/**
 * A stretch of a log that could not be read as it should: where it starts,
 * what was wrong and where reading went on (-1 when it did not).
 */
struct UlogDamage
{
    qint64 offset = 0;
    qint64 resumedAt = -1;
    QString what;

    /** "byte OFFSET: WHAT", and where reading went on. */
    QString text() const;
};

/**
 * Reads a PX4 ULog front to back, one message per next(), holding no more
 * than a block of the log and its subscriptions and formats: a reader that
 * needs messages again keeps their offsets and reads them back with
 * readAt().
 *
 * The log's header comes first: the magic, version and start timestamp,
 * then the flag bits. When these say data was appended, the log is read in
 * parts: the main part up to the first appended offset, then each appended
 * part; a message may not run from one part into the next.
 *
 * Damage does not stop the reading. A message that runs past the end of the
 * log ends it ("cut"). A message header whose type is no letter (every ULog
 * message type is one), or whose size is 0, is damage: the parser looks for
 * the next sync message's magic, in the same part, and goes on after it, or
 * at the next part, or ends. A message of a known type that does not hold
 * together, or data for no subscription, is passed over by its size. Each
 * is told in damage(), with its byte offset. A message type the parser does
 * not know is passed over by its size and counted, as newer logs may hold
 * some.
 */
class UlogParser
{
public:
    enum class Message {
        FlagBits,
        Format,
        Info,
        MultiInfo,
        Parameter,
        DefaultParameter,
        Subscription,
        Unsubscription,
        Data,
        /** A logged string, tagged or not. */
        Logging,
        Sync,
        Dropout,
        /** The log was read to its end; damage() tells what was passed over. */
        End,
        /** The log cannot be read at all: errorString() says why. */
        Failed
    };

    struct Subscription
    {
        std::string topic;
        quint16 msgId = 0;
        quint8 multiId = 0;
        bool active = false;
    };

    struct LoggedString
    {
        /** The level as logged, '0' (emergency) to '7' (debug). */
        quint8 level = 0;
        bool tagged = false;
        quint16 tag = 0;
        quint64 timestamp = 0;
        std::string_view text;
    };

    /** Reads @p device, which must be open for reading and outlive the parser. */
    explicit UlogParser(QIODevice *device);

    /** Reads on to the next message and tells its kind. */
    Message next();

    // The header, valid once next() returned anything but Failed.
    quint8 version() const { return fileVersion; }
    /** When logging started, µs. */
    quint64 startTimestamp() const { return start; }
    const std::array<quint8, 8> &compatFlags() const { return compat; }
    const std::array<quint8, 8> &incompatFlags() const { return incompat; }
    /** The offsets of the appended parts the flag bits name, ascending. */
    const std::vector<qint64> &appendedOffsets() const { return appended; }
    /** 0 while in the main part, n in the n-th appended part. */
    int part() const { return currentPart; }

    const UlogFormats &formats() const { return formatTable; }
    /** The subscription of message id @p msgId; nullptr when the log added none. */
    const Subscription *subscription(quint16 msgId) const;

    // The current message.
    /** Where its header starts in the log. */
    qint64 messageOffset() const { return messageStart; }
    /** Whether the definitions are over: parameters from then on are changes. */
    bool inDataSection() const { return dataSection; }
    /** Format: the definition as written ("name:type field;..."). */
    std::string_view formatDefinition() const { return body; }
    /** Info, MultiInfo, Parameter, DefaultParameter. */
    const UlogKeyValue &keyValue() const { return entry; }
    /**
     * MultiInfo: the value with the parts before it that it continues,
     * joined (an independent part alone).
     */
    std::string_view joinedValue() const { return joined; }
    /** DefaultParameter: the bits of the kinds of defaults the value is. */
    quint8 defaultTypes() const { return defaults; }
    /** Subscription, Unsubscription, Data. */
    const Subscription &currentSubscription() const { return *current; }
    /**
     * Data: the topic's bytes (a log may leave the padding at the end out, so
     * they may be fewer than the format's size, but never fewer than
     * its minimum size), valid until the next message.
     */
    std::string_view payload() const { return body; }
    /** Data: where the topic's bytes start in the log, for readAt(). */
    qint64 payloadOffset() const { return bodyOffset; }
    /** Data: the topic's timestamp (its first field), µs. */
    quint64 timestamp() const;
    const LoggedString &loggedString() const { return logged; }
    /** Dropout: how long logging lost data, ms. */
    quint16 dropoutDuration() const { return dropout; }

    /**
     * What was passed over as damage, in the order met: the first
     * keptDamage of them, so that a ruined log costs no more memory.
     */
    const std::vector<UlogDamage> &damage() const { return damages; }
    /** All damage met, also beyond what damage() keeps. */
    qint64 damageCount() const { return damageTotal; }
    static constexpr int keptDamage = 100;
    /** Messages of types the parser does not know, passed over. */
    qint64 unknownMessages() const { return unknownCount; }
    /** Why next() returned Failed. */
    QString errorString() const { return error; }
    /** Bytes of the log read so far. */
    qint64 position() const { return bufferOffset + qint64(cursor); }

    /**
     * Reads @p size bytes at @p offset of the log into @p into, as a payload
     * found earlier; the reading of messages goes on where it was. The
     * device must be able to seek. False when the bytes cannot be read.
     */
    bool readAt(qint64 offset, char *into, qint64 size);

private:
    enum class Framing { Message, Skip, Broken };

    bool readHeader();
    bool available(std::size_t count);
    bool skipTo(qint64 offset);
    Framing readMessage(char type, std::string_view content, Message *kind);
    Message readFlagBits(std::string_view content);
    bool resynchronise(qint64 from, const QString &what);
    qint64 partEnd() const;
    void note(qint64 offset, qint64 resumedAt, const QString &what);
    Message fail(const QString &why);

    QIODevice *device;
    std::vector<char> buffer;
    std::size_t cursor = 0;
    std::size_t filled = 0;
    qint64 bufferOffset = 0;
    bool deviceAtEnd = false;
    bool headerRead = false;
    bool ended = false;

    quint8 fileVersion = 0;
    quint64 start = 0;
    std::array<quint8, 8> compat{};
    std::array<quint8, 8> incompat{};
    std::vector<qint64> appended;
    int currentPart = 0;
    bool dataSection = false;

    UlogFormats formatTable;
    std::vector<Subscription> subscriptions;
    std::vector<bool> missingNoted;
    const Subscription *current = nullptr;

    qint64 messageStart = 0;
    std::string_view body;
    qint64 bodyOffset = 0;
    UlogKeyValue entry;
    std::string joined;
    std::string joinedKey;
    quint8 defaults = 0;
    LoggedString logged;
    quint16 dropout = 0;

    std::vector<UlogDamage> damages;
    qint64 damageTotal = 0;
    qint64 unknownCount = 0;
    QString error;
};
