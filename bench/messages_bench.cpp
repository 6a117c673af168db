// Messages through the chain of handlers beside bare virtual calls.

#include "ratios.h"

#include <KxQts/messages/processhandler.h>

#include <memory>

namespace {

class Answering final : public IProcessHandler {
public:
    bool installProcessHandler(IProcessHandler*) override { return false; }
    bool removeProcessHandler(IProcessHandler*) override { return false; }
    int processRequest(infoMessage* message) override { return message->level; }
};

std::unique_ptr<infoMessage> makeMessage() {
    return std::unique_ptr<infoMessage>(infoMessage::Instance(QStringLiteral("text"), nullptr,
                                                              Korvex::messageModeWarning,
                                                              QMessageBox::Ok, Qt::NonModal));
}

// Three virtual calls, with a reference held around the second and one around the third.
void FloorChain(benchmark::State& state) {
    const std::unique_ptr<infoMessage> message = makeMessage();
    Answering handler;
    IProcessHandler* called = &handler;
    message->refCount = 1;
    for (auto _ : state) {
        for (int held = 0; held <= 2; ++held) {
            benchmark::DoNotOptimize(called);
            if (held > 0)
                ++message->refCount;
            benchmark::DoNotOptimize(called->processRequest(message.get()));
        }
        --message->refCount;
        --message->refCount;
    }
}
BENCHMARK(FloorChain);

void Chain(benchmark::State& state) {
    const std::unique_ptr<infoMessage> message = makeMessage();
    Answering handler;
    installCustomHandler(3, &handler);
    message->retain();
    for (auto _ : state)
        benchmark::DoNotOptimize(callProcessRequest(1, message.get()));
    removeCustomHandler(3, &handler);
}
BENCHMARK(Chain);

void FloorMake(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(std::make_unique<QObject>());
}
BENCHMARK(FloorMake);

void Make(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(makeMessage());
}
BENCHMARK(Make);

} // namespace

int main(int argc, char** argv) {
    return KxBench::run(argc, argv,
                        {
                            {"Chain", "FloorChain", 2.0},
                            {"Make", "FloorMake", 2.0},
                        });
}
