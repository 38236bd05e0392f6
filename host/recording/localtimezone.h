#pragma once

/**
 * Names the system's own time zone in TZ when the user has not set it. The
 * C library then stops looking at /etc/localtime for changes at every
 * conversion of a local time, which a recording with sample dates asks for
 * once a sample. The zone stays the same: TZ=:/etc/localtime is the file the
 * library reads when TZ is not set. Call it first thing in main().
 */
void pinLocalTimeZone();
