/**
 * Start and stop behind KTInit() and KTClean(). A start either completes or leaves nothing behind.
 */
#ifndef KELTO_LIFECYCLE_LIFECYCLE_H
#define KELTO_LIFECYCLE_LIFECYCLE_H

extern "C" {
#pragma GCC visibility push(default)

/**
 * Starts the library: the platform, the memory tag, the three mutexes, the list of tables, in this order.
 * @param handle  the platform handle; 0 from KTInit().
 * @return non-zero on success, also when the library was started already (nothing is then done); 0 on failure, with
 *         everything undone.
 */
long KeltoInit(long handle);

/** Undoes KeltoInit(), whole or in part: what does not exist is passed over. No other call may be in progress. */
void KeltoClean(void);

#pragma GCC visibility pop
}

#endif
