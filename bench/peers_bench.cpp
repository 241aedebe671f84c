// What do others take for a line, under the same promise: it is in the kernel when the call
// returns?
#if __has_include(<spdlog/spdlog.h>)
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#endif
#if __has_include(<log4cplus/logger.h>)
#include <log4cplus/fileappender.h>
#include <log4cplus/initializer.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>
#endif

#include "bench.h"

namespace quor_bench {

#if __has_include(<spdlog/spdlog.h>)
void SpdlogLine(benchmark::State& state) {
    static const auto logger = [] {
        auto made = spdlog::basic_logger_mt("bench", "spdlog.trace");
        made->set_pattern("[%t: %H:%M:%S.%F]   76: %v");
        made->flush_on(spdlog::level::info);
        return made;
    }();
    for (auto _ : state) {
        logger->info(c_text);
    }
}
BENCHMARK(SpdlogLine)->Name("trace line/spdlog")->ThreadRange(1, 4)->UseRealTime();
#endif

#if __has_include(<log4cplus/logger.h>)
void Log4cplusLine(benchmark::State& state) {
    static const log4cplus::Initializer initializer;
    static const log4cplus::Logger logger = [] {
        log4cplus::SharedAppenderPtr appender(new log4cplus::FileAppender("log4cplus.trace"));
        appender->setLayout(
            std::make_unique<log4cplus::PatternLayout>("[%t: %d{%H:%M:%S.%q}]   76: %m%n"));
        log4cplus::Logger made = log4cplus::Logger::getInstance("bench");
        made.addAppender(appender);
        made.setLogLevel(log4cplus::INFO_LOG_LEVEL);
        return made;
    }();
    for (auto _ : state) {
        LOG4CPLUS_INFO(logger, c_text);
    }
}
BENCHMARK(Log4cplusLine)->Name("trace line/log4cplus")->ThreadRange(1, 4)->UseRealTime();
#endif

}  // namespace quor_bench
