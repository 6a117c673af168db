/* Keeps the settings of a small program in its INI file:

     winini show            prints every setting
     winini set KEY VALUE   changes one
     winini reset           removes them all, so that the usual ones hold again

   A program as it is written for Windows. It needs <windows.h>, <stdio.h> and <string.h> and
   nothing else. */

#include <windows.h>

#include <stdio.h>
#include <string.h>

#define COUNT_OF(array) (sizeof(array) / sizeof((array)[0]))
#define TEXT_SIZE 64

static const char profile[] = "./winini.ini";
static const char* const section = "Settings";

typedef struct {
    const char* key;
    const char* usual;
} Setting;

static const Setting settings[] = {
    {"Colour", "blue"}, {"Greeting", "Good day"}, {"Width", "80"}, {"Path", ""}};

static void show(void) {
    size_t i;
    for (i = 0; i < COUNT_OF(settings); ++i) {
        char text[TEXT_SIZE] = "";
        DWORD length = GetPrivateProfileStringA(section, settings[i].key, settings[i].usual, text,
                                                sizeof text, profile);
        printf("%-10s %-20s (%lu characters)\n", settings[i].key, text, (unsigned long)length);
    }
}

static int change(const char* key, const char* value) {
    if (!WritePrivateProfileStringA(section, key, value, profile)) {
        fprintf(stderr, "winini: cannot change %s\n", key ? key : "all settings");
        return 1;
    }
    return 0;
}

int main(int argc, char** argv) {
    if (argc == 2 && strcmp(argv[1], "show") == 0) {
        show();
        return 0;
    }
    if (argc == 4 && strcmp(argv[1], "set") == 0)
        return change(argv[2], argv[3]);
    if (argc == 2 && strcmp(argv[1], "reset") == 0)
        return change(NULL, NULL);
    fprintf(stderr, "usage: winini show | set KEY VALUE | reset\n");
    return 2;
}
