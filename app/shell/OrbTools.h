#pragma once

class OrbLog;

/// Start and stop of the process-wide services. Main thread.
namespace OrbTools {

void start();
void stop();

/// The log between start and stop, null otherwise.
OrbLog *log();

} // namespace OrbTools
