#pragma once

#include <wchar.h>

// In C every form of `wmain` is one symbol. In C++ each form is a function of its own, and which
// one a program defines is not known here: main calls the C symbol, and where the program has none,
// each file of this folder defines one form by calling the next. The linker takes them one after
// another until it meets the form that the program defines. A program that has none at all fails to
// link, for want of the last.

#ifdef __cplusplus
extern "C" {
#endif

int wmain(int argc, wchar_t** argv, wchar_t** envp);

/// The environment as wide text, ended by null, for the forms that are called without it.
extern wchar_t** kxmain_environment;

#ifdef __cplusplus
}

int wmain(int argc, wchar_t** argv);
int wmain(int argc, const wchar_t** argv);
int wmain(int argc, const wchar_t** argv, const wchar_t** envp);
int wmain(int argc, const wchar_t* const* argv);
int wmain();
#endif
