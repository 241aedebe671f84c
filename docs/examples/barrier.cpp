#include <quor/synchronizer.h>

#include <chrono>
#include <iostream>
#include <thread>
#include <vector>

// A single Wait() may end early without a reason, and counts by the wall clock.
bool AwaitAll(quor::Synchronizer& barrier, std::chrono::seconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!barrier.Wait()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
    }
    return true;
}

int main() {
    quor::Synchronizer ready(3, 10, 100);  // three to come; ten iterations of 100 ms
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (int number = 0; number < 3; ++number) {
        threads.emplace_back([&ready] { ready.Decrement(); });
    }
    std::cout << "all there: " << AwaitAll(ready, std::chrono::seconds(60)) << "\n";
    for (std::thread& thread : threads) thread.join();
}
