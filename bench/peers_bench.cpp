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

#if __has_include(<glog/logging.h>)
#include <glog/logging.h>
#endif
#if __has_include(<Poco/FileChannel.h>)
#include <Poco/FileChannel.h>
#include <Poco/FormattingChannel.h>
#include <Poco/Logger.h>
#include <Poco/PatternFormatter.h>
#endif
#if __has_include(<boost/log/core.hpp>)
#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/log/attributes/clock.hpp>
#include <boost/log/attributes/current_thread_id.hpp>
#include <boost/log/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>
#include <boost/log/sources/logger.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/support/date_time.hpp>
#include <boost/make_shared.hpp>

#include <fstream>
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

#if __has_include(<glog/logging.h>)
// Its line has a form of its own, about as long.
void GlogLine(benchmark::State& state) {
    static const bool started = [] {
        FLAGS_logbuflevel = -1;  // no line waits
        FLAGS_stderrthreshold = google::NUM_SEVERITIES;
        FLAGS_timestamp_in_logfile_name = false;
        google::SetLogDestination(google::INFO, "glog.trace");
        google::InitGoogleLogging("bench");
        return true;
    }();
    benchmark::DoNotOptimize(started);
    for (auto _ : state) {
        LOG(INFO) << c_text;
    }
}
BENCHMARK(GlogLine)->Name("trace line/glog")->ThreadRange(1, 4)->UseRealTime();
#endif

#if __has_include(<Poco/FileChannel.h>)
void PocoLine(benchmark::State& state) {
    static Poco::Logger& logger = [&]() -> Poco::Logger& {
        Poco::AutoPtr<Poco::FileChannel> file(new Poco::FileChannel("poco.trace"));
        file->setProperty(Poco::FileChannel::PROP_FLUSH, "true");
        Poco::AutoPtr<Poco::PatternFormatter> form(
            new Poco::PatternFormatter("[%I: %H:%M:%S.%F]   76: %t"));
        Poco::AutoPtr<Poco::FormattingChannel> channel(new Poco::FormattingChannel(form, file));
        return Poco::Logger::create("bench", channel, Poco::Message::PRIO_INFORMATION);
    }();
    for (auto _ : state) {
        logger.information(c_text);
    }
}
BENCHMARK(PocoLine)->Name("trace line/POCO")->ThreadRange(1, 4)->UseRealTime();
#endif

#if __has_include(<boost/log/core.hpp>)
void BoostLine(benchmark::State& state) {
    namespace log = boost::log;
    namespace expr = boost::log::expressions;
    static log::sources::logger_mt& logger = []() -> log::sources::logger_mt& {
        const auto backend = boost::make_shared<log::sinks::text_ostream_backend>();
        backend->add_stream(boost::make_shared<std::ofstream>("boost.trace"));
        backend->auto_flush(true);
        const auto sink =
            boost::make_shared<log::sinks::synchronous_sink<log::sinks::text_ostream_backend>>(
                backend);
        sink->set_formatter(
            expr::stream << "["
                         << expr::attr<log::attributes::current_thread_id::value_type>("Thread")
                         << ": "
                         << expr::format_date_time<boost::posix_time::ptime>("Time", "%H:%M:%S.%f")
                         << "]   76: " << expr::smessage);
        log::core::get()->add_sink(sink);
        log::core::get()->add_global_attribute("Thread", log::attributes::current_thread_id());
        log::core::get()->add_global_attribute("Time", log::attributes::local_clock());
        return *new log::sources::logger_mt;
    }();
    for (auto _ : state) {
        BOOST_LOG(logger) << c_text;
    }
}
BENCHMARK(BoostLine)->Name("trace line/Boost.Log")->ThreadRange(1, 4)->UseRealTime();
#endif

}  // namespace quor_bench
