#include "OrbTools.h"

#include "OrbLog.h"

#include <memory>

namespace {

std::unique_ptr<OrbLog> &instance()
{
    static std::unique_ptr<OrbLog> log;
    return log;
}

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
