// Not startup.h: the form that is defined here is the C++ function, which that header cannot name
// beside the C one.
int wmain(int argc, const wchar_t** argv);

int wmain(int argc, wchar_t** argv, wchar_t**) {
    return wmain(argc, const_cast<const wchar_t**>(argv));
}
