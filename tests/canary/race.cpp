// Two threads of Qt's count without a lock: ThreadSanitizer must see it, although the threads were
// started by a library that it does not watch.

#include <QThread>

namespace {

int counter = 0;

class Counting : public QThread {
    void run() override {
        constexpr int times = 1000;
        for (int i = 0; i < times; ++i)
            ++counter;
    }
};

} // namespace

int main() {
    Counting first;
    Counting second;
    first.start();
    second.start();
    first.wait();
    second.wait();
    return 0;
}
