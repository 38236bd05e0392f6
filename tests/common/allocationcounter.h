#pragma once

#include <QString>
#include <QtGlobal>

#include <functional>

/**
 * The test binary's own global operator new and delete, for tests of what a
 * constructor leaves behind when an allocation fails. Compiled into a test
 * binary (not into a library), the replacement serves the whole process: the
 * binary, Qt and the C++ library alike.
 *
 * Every block is counted while it lives. One allocation asked for by the
 * binary's own code (the code under test and the inline code of the headers
 * it uses, not Qt's libraries, whose frames need not release anything on an
 * exception) can be made to throw std::bad_alloc.
 */
namespace AllocationCounter {

/** Blocks from operator new not yet given back. */
qint64 liveBlocks();

/**
 * Makes the @p nth allocation of the binary's own code from now on throw
 * std::bad_alloc, counting from 1; 0 makes none fail.
 */
void failOwnAllocation(int nth);

/**
 * Runs @p make with its first own allocation failing, then its second, and
 * so on, until it runs through. Gives the number of runs that failed; at the
 * first run that left blocks behind, stops and says so in @p leak.
 */
int failEachInTurn(const std::function<void()> &make, QString *leak);

} // namespace AllocationCounter
