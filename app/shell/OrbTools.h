#pragma once

class OrbLog;
class TimeCounters;

/// The process-wide services.
namespace OrbTools {

/// Start and stop of the log. Main thread.
void start();
void stop();

/// The log between start and stop, null otherwise. Main thread.
OrbLog *log();

/// The stopwatches, calibrated before `main`. Any thread.
TimeCounters &counters();

} // namespace OrbTools
