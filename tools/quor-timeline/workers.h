#ifndef QUOR_TIMELINE_WORKERS_H
#define QUOR_TIMELINE_WORKERS_H

#include <string>
#include <string_view>
#include <vector>

namespace timeline {

struct Call;
struct Message;
struct Thread;

/// Finds out which thread runs which worker. A worker's first lines are written by the thread that
/// starts it, so the name is given only where no other worker can be meant.
class Workers {
public:
    void Enter(Thread& thread, const Call& call);
    void Take(Thread& thread, const Message& message);

private:
    std::vector<std::string> m_started;  // and their bodies not seen yet
    std::size_t m_nameless = 0;          // bodies of some of these
};

/// The worker in "Worker thread: NAME: EVENT"; empty when the text is none such.
std::string_view WorkerOf(std::string_view text, std::string_view event);

constexpr std::string_view c_workerBody = "void quor::WorkerThread::operator()()";

}  // namespace timeline

#endif
