#pragma once

#include "abstractrecordingreader.h"

#include <array>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

/**
 * Reads a recording on a thread of its own, some batches of samples ahead
 * of its caller, so that parsing the recording and formatting the export
 * take place on two cores at once.
 *
 * It answers exactly as the reader it wraps would, sample for sample: the
 * same samples, positions and errors in the same order. At a bad line the
 * thread waits until the caller either skips it or stops reading. What does
 * not change while reading (the properties, the update rate and the size)
 * is taken from the reader before the thread starts; from then on only the
 * thread touches the reader, until finish() stops it.
 *
 * Where the system refuses a thread, the batches are read in the caller's
 * thread instead, each when it is wanted.
 *
 * The standard library's threads and locks are used, rather than Qt's, so
 * that ThreadSanitizer sees them.
 */
class ReadAhead : public AbstractRecordingReader
{
public:
    /** Samples a batch holds, and batches in flight: some 1.1 MiB of samples. */
    static constexpr int batchSize = 128;
    static constexpr int batchCount = 8;

    /**
     * Reads on from where @p reader stands; it must be open and outlive this.
     * The thread starts with the first readNext().
     */
    explicit ReadAhead(AbstractRecordingReader *reader);
    /** Stops the thread, as finish() does. */
    ~ReadAhead() override;

    ReadAhead(const ReadAhead &) = delete;
    ReadAhead &operator=(const ReadAhead &) = delete;

    /**
     * Whether a thread of its own reads the recording: false before the
     * first readNext() and where the system refused the thread.
     */
    bool readsAhead() const;

    /**
     * Ends the reading: the thread stops wherever it is, and readNext()
     * answers false from then on. The reader is the caller's again, so
     * readingNotice() can now say what it passed over, ahead of the caller
     * as well.
     */
    void finish();

    bool readNext() override;
    bool hasError() const override;
    QString errorString() const override;
    bool hasBadLine() const override;
    void skipBadLine() override;
    QVariant property(const QString &key) const override;
    QVariantMap properties() const override;
    double updateRate() const override;
    const RecordingSample &sample() const override;
    qint64 position() const override;
    qint64 size() const override;
    /**
     * The reader's notice as finish() found it; empty before, while the
     * thread may still be reading.
     */
    QString readingNotice() const override;

private:
    struct Batch
    {
        std::vector<RecordingSample> samples;
        std::vector<qint64> positions;
        int count = 0;
        // Whether the reader stopped after these samples, and how.
        bool last = false;
        bool failed = false;
        QString error;
        bool badLine = false;
        qint64 endPosition = 0;
    };

    void start();
    void read();
    bool fill(Batch &batch);
    void release();
    void stop();

    AbstractRecordingReader *const reader;
    const QVariantMap recordingProperties;
    const double rate;
    const qint64 recordingSize;

    // Shared with the thread under the lock: batches filled and batches
    // given back, counted from the start, whether the caller skipped the
    // bad line the thread waits at, and whether the thread is to stop.
    std::array<Batch, batchCount> batches;
    qint64 filled = 0;
    qint64 released = 0;
    bool skip = false;
    bool stopping = false;
    std::mutex lock;
    std::condition_variable changed;
    std::thread thread;

    // The caller's side: whether the thread was started and runs, the batch
    // being read, and the sample shown, which is copied out of a batch given
    // back so that it stays valid.
    bool started = false;
    bool threaded = false;
    const Batch *current = nullptr;
    int index = -1;
    const RecordingSample none;
    RecordingSample held;
    const RecordingSample *shown = &none;
    qint64 shownPosition;
    bool failed = false;
    QString error;
    bool badLine = false;
    bool ended = false;
    QString notice;
};
