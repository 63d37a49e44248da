#pragma once
// Marks the functions that run on the render thread. Under clang 20 or later
// the attribute lets RealtimeSanitizer (-fsanitize=realtime) stop the program
// on any allocation, free, lock or blocking call made inside such a function
// or anything it calls. Other compilers see nothing.
#if defined(__clang__) && defined(__clang_major__) && __clang_major__ >= 20
#define QUILLO_NONBLOCKING [[clang::nonblocking]]
#else
#define QUILLO_NONBLOCKING
#endif
