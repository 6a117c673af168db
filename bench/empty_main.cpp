// A program that does nothing but load what it is linked with.
int main() {
    return 0;
}
