#include "common/unprivileged.h"

#include "common/child.h"

#include <grp.h>
#include <unistd.h>

namespace KxTest {

namespace {

bool giveUpRights() {
    if (geteuid() != 0)
        return true;
    return setgroups(0, nullptr) == 0 && setresgid(ordinaryUser, ordinaryUser, ordinaryUser) == 0 &&
           setresuid(ordinaryUser, ordinaryUser, ordinaryUser) == 0;
}

} // namespace

testing::AssertionResult asOrdinaryUser(const std::function<void()>& checks) {
    return inChild([&] {
        ASSERT_TRUE(giveUpRights()) << "root's rights could not be given up";
        checks();
    });
}

void giveToOrdinaryUser(const char* path) {
    if (geteuid() == 0 && lchown(path, ordinaryUser, ordinaryUser) != 0)
        ADD_FAILURE() << path << " could not be given away";
}

} // namespace KxTest
