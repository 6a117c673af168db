#include "common/blocking.h"

#include <fstream>
#include <pthread.h>
#include <string>
#include <unistd.h>

namespace KxTest {

namespace {

/// The letter that the system shows for what a thread does.
char stateOf(pid_t task) {
    std::ifstream file("/proc/self/task/" + std::to_string(task) + "/stat");
    std::string line;
    std::getline(file, line);
    const std::size_t name = line.rfind(')'); // the name itself may hold anything
    return name == std::string::npos ? '?' : line[name + 2];
}

} // namespace

void waitUntilAsleep(pid_t task) {
    for (char state = stateOf(task); state != 'S' && state != '?'; state = stateOf(task))
        std::this_thread::yield();
}

BlockingThread::BlockingThread(std::function<void()> work)
    : thread([this, work = std::move(work)] {
          task = gettid();
          task.notify_one();
          work();
          over = true;
      }) {
    task.wait(0);
}

BlockingThread::~BlockingThread() {
    if (thread.joinable())
        thread.join();
}

void BlockingThread::waitUntilBlocked() const {
    waitUntilAsleep(task);
}

void BlockingThread::terminate() {
    waitUntilBlocked();
    pthread_cancel(thread.native_handle());
    join();
}

void BlockingThread::join() {
    thread.join();
}

} // namespace KxTest
