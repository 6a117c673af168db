/* A verifier that knows one password of one user. */

#include <string.h>

unsigned odUserAccountVerifyPassword(const char* userName, const char* password);

unsigned odUserAccountVerifyPassword(const char* userName, const char* password) {
    if (strcmp(userName, "ann\xE9?") != 0)
        return 4000000001U;
    return strcmp(password, "") == 0 ? 3
                                     : strcmp(password, "s\xE9"
                                                        "cret") != 0;
}
