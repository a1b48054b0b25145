/* Stands in front of every source that is hardened: the C library's checked functions, where the compiler optimises. */
#ifdef __OPTIMIZE__
#undef _FORTIFY_SOURCE
#define _FORTIFY_SOURCE 3
#endif
