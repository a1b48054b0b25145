/**
 * The C heap of this program fails on request: the n-th allocation that Kelto itself, expat, ICU or the C library asks
 * it for. Those of the test and of the fake platform never fail. Sanitizers have a heap of their own, so without
 * effect there.
 */
#ifndef KELTO_TESTS_SUPPORT_HEAP_FAULTS_H
#define KELTO_TESTS_SUPPORT_HEAP_FAULTS_H

namespace HeapFaults
{

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
constexpr bool arePossible = true;
#else
constexpr bool arePossible = false;
#endif

/** Lets the n-th allocation of this thread from here on fail; only those of one library count, where it is named. */
void arm(unsigned n, const char *library = nullptr);
/** Takes that back; how many allocations failed. */
unsigned disarm();
/** The blocks that this thread took and did not free between arm() and disarm(). */
long outstanding();

} // namespace HeapFaults

#endif
