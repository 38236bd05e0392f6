#pragma once

#include <QByteArray>

/** One sample line that holds every key, each member with a value of its own; no line feed. */
QByteArray everyKeySampleLine();
