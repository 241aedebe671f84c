#include <kit.h>
#include <quor/thread_controller.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

int main() {
    cStopSleepPeriodMs = 10'000;  // one ring must do: the next would come ten seconds later
    quor::TraceFile::Init("controller.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::High);
    kit::StopRequest stop;
    const auto bell = std::make_shared<kit::Bell>();  // copies of the cancel function share it
    const auto pass = [bell] { bell->Await(); };
    quor::ThreadController scan(
        "scan", [&stop, pass] { kit::Guard("scan", stop, pass); }, [bell] { bell->Ring(); });
    scan.Start();
    scan.Stop();
}
