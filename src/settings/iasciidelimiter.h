#pragma once

class QTextStream;

/**
 * A fixed text that goes into an exported line: the field delimiter, or the
 * text written for an empty field.
 */
class IAsciiDelimiter
{
public:
    virtual ~IAsciiDelimiter() = default;

    /** Writes the text into @p stream. */
    virtual QTextStream &write(QTextStream &stream) const = 0;
};
