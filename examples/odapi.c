/* A verifier of account passwords for KxVerifyUserPassword, by way of PAM. It becomes
 * libOdApi.dylib. */

#define _POSIX_C_SOURCE 200809L /* for strdup */

#include <security/pam_appl.h>

#include <stdlib.h>
#include <string.h>

/* An administrator may say in /etc/pam.d/korvex how passwords are verified. */
static const char service[] = "korvex";

/* PAM frees what it is answered; it wipes it itself. */
static int answerWithPassword(int count, const struct pam_message** messages,
                              struct pam_response** answers, void* password) {
    struct pam_response* given = calloc((size_t)count, sizeof *given);
    if (given == NULL)
        return PAM_BUF_ERR;
    for (int i = 0; i < count; ++i) {
        const int style = messages[i]->msg_style;
        if (style == PAM_PROMPT_ECHO_OFF || style == PAM_PROMPT_ECHO_ON)
            given[i].resp = strdup(password);
    }
    *answers = given;
    return PAM_SUCCESS;
}

/* Whether the user, whose password is right, may use it at all. */
static int checkAccount(pam_handle_t* handle) {
    const int status = pam_acct_mgmt(handle, PAM_SILENT);
    return status == PAM_NEW_AUTHTOK_REQD ? PAM_SUCCESS : status;
}

/* 0 when the password is the user's; else PAM's number for why not. */
__attribute__((visibility("default"))) unsigned odUserAccountVerifyPassword(const char* userName,
                                                                            const char* password) {
    const struct pam_conv conversation = {answerWithPassword, (void*)password};
    pam_handle_t* handle = NULL;
    if (userName == NULL || password == NULL || *userName == '\0')
        return PAM_USER_UNKNOWN;
    int status = pam_start(service, userName, &conversation, &handle);
    if (status != PAM_SUCCESS)
        return (unsigned)status;
    status = pam_authenticate(handle, PAM_SILENT | PAM_DISALLOW_NULL_AUTHTOK);
    if (status == PAM_SUCCESS)
        status = checkAccount(handle);
    pam_end(handle, status);
    return (unsigned)status;
}
