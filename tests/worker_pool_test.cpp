#include <quor/exception.h>
#include <quor/trace_file.h>

#include "threads.h"

#include <gtest/gtest.h>

#include <thread>

namespace quor_test {
namespace {

void WaitForStop(Worker& worker) {
    while (!worker.StopRequested()) {
        worker.TimedWait(0, 1'000'000);
    }
    QUOR_TRACE(quor::Low, "Main ends");
}

TEST(WorkerPool, MakesAWorkerOnceUntilItIsDeleted) {
    const ThreadTap trace;
    std::string made;
    Pool pool([&made](const std::string& name) {
        made += name + " ";
        return name == "none" ? nullptr : new Worker(name, nullptr);
    });
    quor::WorkerThread* const worker = pool.GetWorker("a");
    EXPECT_EQ(pool.GetWorker("a"), worker);
    EXPECT_EQ(pool.GetWorker("none"), nullptr);
    for (const char* name : {"none", "a", "a"}) {
        pool.Terminate(name);
    }
    delete pool.GetWorker("a");
    pool.GetWorker("a");
    pool.TerminateAll();
    EXPECT_EQ(made, "a none a a ");
    const std::string life = "0 a: CREATED\n0 a: DESTROYED\n";
    EXPECT_EQ(ThreadTap::Lines("worker_thread"),  // never started: neither stopped nor joined
              life + life + life + "0 worker_pool: Terminated worker threads.\n");
}

TEST(WorkerPool, TerminateAllStopsJoinsAndDeletesOneAfterAnotherInTheOrderOfNames) {
    const ThreadTap trace;
    Pool pool(WaitForStop);
    pool.GetWorker("b")->Start();
    pool.GetWorker("a")->Start();
    pool.TerminateAll();
    quor::TraceFile::GetInstance().SetLevel(quor::Detail);
    pool.TerminateAll();
    EXPECT_EQ(ThreadTap::Lines("worker_thread"),
              "0 b: CREATED\n0 b: START\n0 a: CREATED\n0 a: START\n"
              "0 a: REQUEST TO STOP\n1 worker_pool_test: Main ends\n0 a: DESTROYED\n"
              "0 b: REQUEST TO STOP\n2 worker_pool_test: Main ends\n0 b: DESTROYED\n"
              "0 worker_pool: Terminated worker threads.\n0 *** Trace level changed to 4\n"
              "0 worker_pool: ==> void quor::WorkerPool::TerminateAll()\n"
              "0 worker_pool: Size of worker map: 2\n"
              "0 worker_pool: Terminated worker threads.\n"
              "0 worker_pool: <== void quor::WorkerPool::TerminateAll()\n");
}

TEST(WorkerPool, TerminateAllTakesAlongWhatAppearsWhileItRuns) {
    struct Parent : Worker {
        explicit Parent(Pool& pool) : Worker("b", WaitForStop), m_pool(pool) {}
        ~Parent() override {
            m_pool.GetWorker("c")->Start();
            m_pool.GetWorker("a");
        }
        Pool& m_pool;
    };
    Pool* self = nullptr;
    Pool pool([&self](const std::string& name) {
        return name == "b" ? new Parent(*self) : new Worker(name, WaitForStop);
    });
    self = &pool;
    for (int round = 0; round < 2; ++round) {
        const ThreadTap trace;
        pool.GetWorker("b");
        pool.TerminateAll();
        EXPECT_EQ(ThreadTap::Lines("worker_thread"),
                  "0 b: CREATED\n0 c: CREATED\n0 c: START\n0 a: CREATED\n0 b: DESTROYED\n"
                  "0 c: REQUEST TO STOP\n1 worker_pool_test: Main ends\n0 c: DESTROYED\n"
                  "0 a: DESTROYED\n0 worker_pool: Terminated worker threads.\n");
    }
}

TEST(WorkerPool, FailingFactoryLeavesThePoolAsItWasAndLiveWorkersOutliveIt) {
    static Pool* pool = nullptr;
    struct Caller : Worker {
        using Worker::Worker;
        ~Caller() override { pool->Terminate("b"); }
    };
    const ThreadTap trace;
    pool = new Pool([](const std::string& name) {
        return name == "throw" ? throw 1
               : name == "b"   ? new Caller("a", nullptr)
                               : new Worker("a", nullptr);
    });
    EXPECT_THROW(pool->GetWorker("throw"), int);
    EXPECT_THROW(pool->GetWorker("b"), quor::Exception);  // since it gets an "a"
    delete pool->GetWorker("a");
    quor::WorkerThread* const orphan = pool->GetWorker("a");
    delete pool;
    delete orphan;
    const std::string life = "0 a: CREATED\n0 a: DESTROYED\n";
    EXPECT_EQ(ThreadTap::Lines("worker_thread"),
              "0 a: CREATED\n0 exception: ** Thrown quor::Exception: "
              "Worker thread: a: made for the name b\n0 a: DESTROYED\n" +
                  life +
                  "0 a: CREATED\n"
                  "0 worker_pool: WARNING: Worker pool destroyed with live worker: a\n"
                  "0 a: DESTROYED\n");
}

TEST(WorkerPool, TerminatesByANameThatGoesWithTheWorker) {
    std::string name;
    Pool pool([&name](Worker& worker) {
        WaitForStop(worker);
        name = "gone";
    });
    for (int life = 0; life < 2; ++life) {
        pool.GetWorker(name = "a")->Start();
        pool.Terminate(name);
        EXPECT_EQ(name, "gone");
    }
}

TEST(WorkerPool, OnlyOneOfSeveralTerminationsOfANameActs) {
    std::atomic<int> started{0};
    Pool* self = nullptr;
    Pool pool([&](Worker& worker) {
        self->GetWorker("b" + std::to_string(++started));
        WaitForStop(worker);
    });
    self = &pool;
    for (int round = 1; round <= 300; ++round) {
        quor::WorkerThread* const worker = pool.GetWorker("a");
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 3; ++thread) {
            threads.emplace_back([&, thread] {
                while (started != round) {  // which may be before Start() returns
                    std::this_thread::yield();
                }
                pool.Terminate("a");
                const std::string own = "c" + std::to_string(thread);
                pool.GetWorker(own);
                pool.Terminate(own);
            });
        }
        worker->Start();
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    pool.GetWorker("a")->Start();  // asks for a worker while all are terminated
    pool.TerminateAll();
    EXPECT_EQ(started, 301);
}

}  // namespace
}  // namespace quor_test
