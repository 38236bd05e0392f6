#pragma once

#include <QCoreApplication>
#include <QFile>
#include <QString>

/**
 * A copy of a stream that can be read only once, such as a pipe, so that it
 * can be read again. The copy lies in the temporary folder (TMPDIR) without
 * a name: it goes with the process, however that ends.
 *
 * An endless stream must not fill the disk: the copy stops with an error
 * before it would leave the file system of the temporary folder with less
 * free room than a twentieth of its size, or 1 GiB on a large one.
 */
class TemporaryCopy
{
    Q_DECLARE_TR_FUNCTIONS(TemporaryCopy)

public:
    /**
     * Copies what @p source gives, up to its end, @p name naming it in
     * messages. Returns false on failure; errorString() then tells why.
     */
    bool copy(QIODevice *source, const QString &name);

    /** The copy, open for reading, at its start. */
    QIODevice *device();

    QString errorString() const;

private:
    bool open();
    bool fail(const QString &what);

    QString name;
    QFile file;
    QString error;
};
