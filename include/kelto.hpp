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
 * **The ladder** is that of chapter 9 of kelto.h: catalog::format() always returns a text; on_problem is told what was
 * passed over.
 *
 * **Errors.** What can fail has an overload that takes a std::error_code and throws nothing; with -fno-exceptions these
 * are the only ones. The others throw kelto::error, and what() is a line for a log: what was asked for, and of a format
 * the conversion and the argument that do not fit. Memory that runs out is a std::bad_alloc, as everywhere.
 *
 * **Threads.** Any number of threads may call the const members of one object at once. No lock of the layer is taken by
 * a call that formats a message that was formatted before.
 *
 * **Lifetime.** Every object holds a use of the library for as long as it needs one, and these uses begin and end under
 * one lock. The first of them sets the LC_CTYPE locale of the process, as KTInit() does. A program that calls KTInit()
 * and KTClean() itself as well does so while a kelto::library exists; one whose plug-ins use this header too, and are
 * opened with RTLD_LOCAL, has one meanwhile, since these may have a lock each.
 */
#ifndef KELTO_HPP
#define KELTO_HPP

#include "kelto/error.hpp"

#include "kelto/argument.hpp"
#include "kelto/catalog.hpp"
#include "kelto/default_text.hpp"
#include "kelto/form_table.hpp"
#include "kelto/format.hpp"

#endif
