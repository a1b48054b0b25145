/**
 * @file kelto.hpp
 * Kelto for C++17: one line, a std::string, and a translation that cannot hurt.
 *
 *     #include <kelto.hpp>
 *     #include <iostream>
 *
 *     int main()
 *     {
 *         kelto::library library;
 *         kelto::catalog store = kelto::catalog::find("store", "/usr/share/store/messages");
 *         std::cout << store.format(3, KELTO_DEFAULT("%s[1] has %d[2] pages"), "report.txt", 12) << '\n';
 *     }
 *
 * The header needs the C interface, kelto.h, and the standard library, nothing else. docs/cpp.md is its guide.
 *
 * **Errors.** What can fail has an overload that takes a std::error_code and throws nothing; with -fno-exceptions these
 * are the only ones. The others throw kelto::error, whose what() is a line for a log, or a std::bad_alloc.
 *
 * **Threads.** Any number of threads may call the const members of one object at once.
 *
 * **Lifetime.** Every object holds a use of the library for as long as it needs one, as KTBeginUse() gives it. A
 * program that calls KTInit() and KTClean() itself as well does so while a kelto::library exists.
 */
#ifndef KELTO_HPP
#define KELTO_HPP

#include "kelto/argument.hpp"
#include "kelto/catalog.hpp"
#include "kelto/default_text.hpp"
#include "kelto/error.hpp"
#include "kelto/form_table.hpp"
#include "kelto/format.hpp"

#endif
