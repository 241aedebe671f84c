#include <quor/internal/thread_label.h>

#include <quor/process.h>

#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <new>

namespace quor::internal {
namespace {

// Returns a word that reads 0 in every new process, since the kernel wipes its page on fork. Null
// if the kernel does not do that.
std::atomic<unsigned>* MapProcessWord() {
    const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const page =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) {
        return nullptr;
    }
    // An emulator that accepts any advice, and follows none, also accepts one that does not exist.
    if (madvise(page, size, MADV_WIPEONFORK) != 0 || madvise(page, size, -1) == 0) {
        munmap(page, size);
        return nullptr;
    }
    return new (page) std::atomic<unsigned>(0);
}

}  // namespace

__thread ThreadLabel t_threadLabel{};
std::atomic<std::atomic<unsigned>*> g_processWord(nullptr);

void RenewLabelOfThread() {
    static std::atomic<unsigned> processes(0);  // grows from parent to child, as fork copies it
    static std::atomic<unsigned>* const word = MapProcessWord();
    g_processWord = word;
    unsigned process = 0;
    if (word != nullptr) {
        const unsigned next = ++processes;
        process = word->compare_exchange_strong(process, next) ? next : process;
    }
    ThreadLabel& label = t_threadLabel;
    label.length =
        static_cast<unsigned>(std::snprintf(label.text, c_threadLabelRoom, "[%05d: ", GetTid()));
    label.process = process;
}

}  // namespace quor::internal
