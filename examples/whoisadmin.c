/* Tells who is an administrator, and asks a verifier about a password:
 *
 *   whoisadmin [USER...]
 *   whoisadmin --verify LIBRARY USER      the password is the first line of standard input
 */

#include <KxQts/windows.h>

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

typedef unsigned (*Verifier)(const char* userName, const char* password);

static int verify(const char* path, const char* user) {
    char password[256] = "";
    void* library = dlopen(path, RTLD_NOW);
    Verifier verifier = NULL;
    if (library != NULL)
        *(void**)&verifier = dlsym(library, "odUserAccountVerifyPassword");
    if (verifier == NULL) {
        fprintf(stderr, "%s is no verifier\n", path);
        return 1;
    }
    if (fgets(password, sizeof password, stdin) != NULL)
        password[strcspn(password, "\n")] = '\0';
    const unsigned result = verifier(user, password);
    ZeroMemory(password, sizeof password);
    printf("%s: %u, %s\n", user, result, result == 0 ? "the password is right" : "refused");
    dlclose(library);
    return result == 0 ? 0 : 1;
}

int main(int argc, char** argv) {
    if (argc == 4 && strcmp(argv[1], "--verify") == 0)
        return verify(argv[2], argv[3]);
    printf("you: %s\n", KxSecurityIsCurrentUserAdmin() ? "an administrator" : "no administrator");
    for (int i = 1; i < argc; ++i)
        printf("%s: %s\n", argv[i],
               KxSecurityIsUserAdmin(argv[i]) ? "an administrator" : "no administrator");
    return 0;
}
