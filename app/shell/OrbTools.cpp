#include "OrbTools.h"

#include "OrbLog.h"
#include "TimeCounters.h"

#include <memory>

namespace {

std::unique_ptr<OrbLog> &instance()
{
    static std::unique_ptr<OrbLog> log;
    return log;
}

[[maybe_unused]] const bool kCalibrated = [] {
    OrbTools::counters().calibrate();
    return true;
}();

} // namespace

void OrbTools::start()
{
    instance() = std::make_unique<OrbLog>();
}

void OrbTools::stop()
{
    instance().reset();
}

OrbLog *OrbTools::log()
{
    return instance().get();
}

TimeCounters &OrbTools::counters()
{
    static TimeCounters counters;
    return counters;
}
