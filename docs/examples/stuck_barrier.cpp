#include <quor/synchronizer.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <string>
#include <thread>

int main() {
    quor::TraceFile::Init("stuck_barrier.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    quor::Synchronizer ended(3, 2, 100);  // the fault: there are two threads, not three
    for (const std::string name : {"scan", "upload"}) {
        std::thread([&ended, name] {
            QUOR_TRACE(quor::Low, "ends: " << name);
            ended.Decrement();
        }).join();
    }
    const bool all = ended.Wait();
    QUOR_TRACE(quor::Low, "all ended: " << all);
}
