#pragma once

#include <QString>

/**
 * The system's text for the error number @p error ("No space left on
 * device"), in the user's locale, as messages give the reason of a failure.
 */
QString systemReason(int error);
