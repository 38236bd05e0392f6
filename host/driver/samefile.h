#pragma once

#include <QString>

/**
 * Whether @p a and @p b name the same file: the same device and inode, so
 * that hard links, symbolic links and names such as /dev/fd/N that lead to
 * it count as well. False when either name leads to no file.
 */
bool isSameFile(const QString &a, const QString &b);
