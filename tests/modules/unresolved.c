/* A library that cannot be bound completely: nobody has the function that it calls. */

int kxtestNowhereDefined(void);
int kxtestAnswer(void);

int kxtestAnswer(void) {
    return kxtestNowhereDefined();
}
