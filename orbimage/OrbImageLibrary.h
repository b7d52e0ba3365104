#pragma once

/// Start and stop of the image library. Main thread, after the application exists.
namespace OrbImageLibrary {

/// Registers the search path "Data" of the library's tables.
void start();

void stop();

} // namespace OrbImageLibrary
