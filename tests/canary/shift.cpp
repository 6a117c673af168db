// Shifts by more than a number has bits: UndefinedBehaviorSanitizer must see it.

int main() {
    volatile int places = 40;
    return (1 << places) == 0 ? 1 : 0;
}
