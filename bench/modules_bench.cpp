// Modules beside the system's loader.

#include "ratios.h"

#include <KxQts/files/library.h>

#include <dlfcn.h>

namespace {

const QString path = QStringLiteral(KXQTS_BENCH_MODULE);

void FloorLoadAndFree(benchmark::State& state) {
    for (auto _ : state)
        dlclose(dlopen(KXQTS_BENCH_MODULE, RTLD_LAZY));
}
BENCHMARK(FloorLoadAndFree);

void LoadAndFree(benchmark::State& state) {
    for (auto _ : state)
        FreeLibrary(loadLibrary(path));
}
BENCHMARK(LoadAndFree);

void FloorSymbol(benchmark::State& state) {
    void* image = dlopen(KXQTS_BENCH_MODULE, RTLD_LAZY);
    for (auto _ : state)
        benchmark::DoNotOptimize(dlsym(image, "kxbenchAnswer"));
    dlclose(image);
}
BENCHMARK(FloorSymbol);

void Symbol(benchmark::State& state) {
    HMODULE module = loadLibrary(path);
    for (auto _ : state)
        benchmark::DoNotOptimize(GetProcAddress(module, "kxbenchAnswer"));
    FreeLibrary(module);
}
BENCHMARK(Symbol);

// What is loaded already is only counted, on both sides.
void FloorReference(benchmark::State& state) {
    void* image = dlopen(KXQTS_BENCH_MODULE, RTLD_LAZY);
    for (auto _ : state)
        dlclose(dlopen(KXQTS_BENCH_MODULE, RTLD_LAZY | RTLD_NOLOAD));
    dlclose(image);
}
BENCHMARK(FloorReference);

void Reference(benchmark::State& state) {
    HMODULE module = loadLibrary(path);
    for (auto _ : state)
        FreeLibrary(GetModuleHandleA(KXQTS_BENCH_MODULE));
    FreeLibrary(module);
}
BENCHMARK(Reference);

} // namespace

int main(int argc, char** argv) {
    return KxBench::run(argc, argv,
                        {
                            {"LoadAndFree", "FloorLoadAndFree", 2.0},
                            {"Symbol", "FloorSymbol", 2.0},
                            {"Reference", "FloorReference", 2.0},
                        });
}
