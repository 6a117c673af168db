#include "messages/defaultlog.h"

void Korvex::openDefaultLog() {}
