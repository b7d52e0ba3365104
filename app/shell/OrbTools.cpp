#include "OrbTools.h"

#include "OrbLog.h"

#include <memory>

namespace {
std::unique_ptr<OrbLog> g_log;
}

void OrbTools::start()
{
    g_log = std::make_unique<OrbLog>();
}

void OrbTools::stop()
{
    g_log.reset();
}

OrbLog *OrbTools::log()
{
    return g_log.get();
}
