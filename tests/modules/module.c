/* A library to load. It tells the program that loads it when its initialiser and its finaliser run,
   if that program wants to know. */

void kxtestModuleLoading(void) __attribute__((weak));
void kxtestModuleUnloading(void) __attribute__((weak));

int kxtestAnswer(void);

__attribute__((constructor)) static void initialise(void) {
    if (kxtestModuleLoading)
        kxtestModuleLoading();
}

__attribute__((destructor)) static void finalise(void) {
    if (kxtestModuleUnloading)
        kxtestModuleUnloading();
}

int kxtestAnswer(void) {
    return 42;
}
