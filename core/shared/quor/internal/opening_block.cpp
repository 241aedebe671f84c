#include <quor/internal/opening_block.h>

#include <quor/internal/joined.h>
#include <quor/internal/time_text.h>
#include <quor/process.h>
#include <quor/ver_info.h>

namespace quor::internal {

std::string FullTime() {
    return TimeText::Of(Time(Time::eDate | Time::eTimeOfDay | Time::eNanoSec));
}

std::string OpeningBlock(const char* title, const std::string& lastFact) {
    return Joined({c_rule, "* *****", title, " *****\n\n",                //
                   "* Version       : ", VerInfo::VersionString(), "\n",  //
                   "* Start time    : ", FullTime(), "\n",                //
                   "* Process name  : ", GetProgName(), "\n", lastFact, c_rule, "\n"});
}

}  // namespace quor::internal
