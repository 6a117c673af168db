/* What bench_modules loads. */

int kxbenchAnswer(void);

int kxbenchAnswer(void) {
    return 42;
}
