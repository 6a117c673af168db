// Not startup.h: the form that is called here is the C++ function, which that header cannot name
// beside the C one.
extern "C" wchar_t** kxmain_environment;

int wmain(int argc, wchar_t** argv, wchar_t** envp);

int wmain(int argc, wchar_t** argv) {
    return wmain(argc, argv, kxmain_environment);
}
