#include <quor/enum_map.h>

namespace quor {
namespace {

constexpr EnumRow<TraceLevel_e> c_traceLevels[] = {
    {Off, "Off"}, {Low, "Low"}, {Medium, "Medium"}, {High, "High"}, {Detail, "Detail"},
};

}  // namespace

template <>
const BiMap<TraceLevel_e> EnumMap<TraceLevel_e>::items{c_traceLevels};

template class BiMap<TraceLevel_e>;
template class EnumMap<TraceLevel_e>;

}  // namespace quor
