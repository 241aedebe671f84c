#include <quor/internal/opening_block.h>

#include <quor/internal/time_text.h>
#include <quor/process.h>
#include <quor/ver_info.h>

namespace quor::internal {

std::string Rule() {
    return std::string(79, '-') + "\n";
}

std::string FullTime() {
    return TimeText::Of(Time(Time::eDate | Time::eTimeOfDay | Time::eNanoSec));
}

std::string OpeningBlock(const std::string& title, const std::string& lastFact) {
    return Rule() + "* *****" + title + " *****\n\n" +               //
           "* Version       : " + VerInfo::VersionString() + "\n" +  //
           "* Start time    : " + FullTime() + "\n" +                //
           "* Process name  : " + GetProgName() + "\n" + lastFact + Rule() + "\n";
}

}  // namespace quor::internal
