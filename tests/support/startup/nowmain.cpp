// Has neither main nor wmain.
int unused() {
    return 0;
}
