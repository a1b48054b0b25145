/**
 * The C heap of this program fails on request: the n-th allocation that Kelto itself, expat or ICU asks it for. Those of the
 * test, of the fake platform and of the C library never fail. Sanitizers have a heap of their own, so without effect there.
 */
#ifndef KELTO_TESTS_FAULTS_HEAP_FAULTS_H
#define KELTO_TESTS_FAULTS_HEAP_FAULTS_H

struct HeapFaults
{
    /** Whether this program has its own heap. */
    static bool arePossible();
    /** Lets the n-th allocation of this thread from here on fail. */
    static void arm(unsigned n);
    /** Takes that back; how many allocations failed. */
    static unsigned disarm();
    /** The blocks of the libraries that were taken and not freed since arm(). */
    static long outstanding();
};

#endif
