/** The checker beside the library: they never disagree on what loads, and on what can be formatted. */
#ifndef KELTO_TESTS_CHECK_AGREEMENT_H
#define KELTO_TESTS_CHECK_AGREEMENT_H

#include <string>

/**
 * An empty text where they agree on a file, else on what they do not. The library must be started.
 * @param loads  out, if not null: whether the library loads it.
 */
std::string disagreement(const std::string &bytes, bool *loads = nullptr);

#endif
